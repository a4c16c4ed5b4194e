// How much of a shared store sessions take.

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <sstream>

#include "host/web/sessions/redis_sessions.h"
#include "host/web/sessions/session_scripts.h"
#include "tests/host/web/shared_site.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class RoomOfSharedSessions : public testing::Test {
protected:
    // What is released soon is released by then, and what is not is locked for longer.
    static constexpr auto patience = 1s;

    std::string create(const Text& guid = {}, std::size_t characters = 10'000) {
        now_ = now_.load() + 1ms;
        const auto lease = sessions_.create();
        lease->data().values.put(u"v", Text(characters, u'x'));
        if (!guid.empty()) lease->data().values.put(u"QUENDRAID", guid);
        lease->close();
        return lease->id();
    }
    bool is_there(const std::string& id) {
        now_ = now_.load() + 1ms;
        return sessions_.open(id, patience) != nullptr;
    }
    std::size_t size() const {
        const std::string size = server_.ask({"GET", "orvo:sessions:size"});
        return size.empty() ? 0 : std::stoull(size);
    }
    std::vector<std::string> keys() const {
        std::istringstream lines(server_.ask({"KEYS", "orvo:session:*"}));
        std::vector<std::string> keys;
        for (std::string line; std::getline(lines, line);)
            if (!line.empty()) keys.push_back(line);
        return keys;
    }
    std::size_t counted() const {
        std::size_t sum = 0;
        for (const std::string& key : keys())
            sum += session_scripts::own_size + std::stoull(server_.ask({"HSTRLEN", key, "v"}));
        return sum;
    }

    std::atomic<std::chrono::milliseconds> now_{24h};
    RedisServer server_;
    std::unique_ptr<SharedStore> store_ = machine_of(server_, [this] { return now_.load(); });
    RedisSessions sessions_{*store_, {.most_bytes = 100'000}};
};

TEST_F(RoomOfSharedSessions, IsBoundedAlsoWhereSessionsGrow) {
    std::vector<std::string> ids;
    for (int i = 0; i < 40; ++i) ids.push_back(create({}, 10));
    for (const std::string& id : ids) {
        now_ = now_.load() + 1ms;
        const auto lease = sessions_.open(id, patience);
        if (!lease) continue;
        lease->data().values.put(u"v", Text(10'000, u'x'));
        lease->close();
        EXPECT_LE(size(), 100'000u);
        EXPECT_TRUE(is_there(id)) << "the one that grows is not among those that go";
    }
}

TEST_F(RoomOfSharedSessions, OfOneLargeSessionIsMadeByManySmallOnes) {
    for (int i = 0; i < 70; ++i) create({}, 10);
    EXPECT_TRUE(is_there(create(u"G", 40'000)));
    EXPECT_LE(size(), 100'000u);
}

TEST_F(RoomOfSharedSessions, ThatRequestsHaveIsNotTaken) {
    std::vector<std::unique_ptr<SessionLease>> leases;
    for (int i = 0; i < 4; ++i) leases.push_back(sessions_.open(create(), 0ms));
    try {
        create();
        FAIL() << "there is no room";
    } catch (const Refusal& refusal) {
        EXPECT_EQ(refusal.status, 503);
        EXPECT_STREQ(refusal.what(), "There are too many sessions.");
    }
    leases.back()->data().values.put(u"w", u"changed, so that it is given back at once");
    leases.pop_back();
    EXPECT_TRUE(is_there(create()));
}

TEST_F(RoomOfSharedSessions, IsBoundedByANewLimitFromTheNextSessionOn) {
    const std::string first = create(), second = create();
    sessions_.set_limits({.most_bytes = 50'000});
    EXPECT_TRUE(is_there(create()));
    EXPECT_TRUE(is_there(second));
    EXPECT_FALSE(is_there(first));
}

TEST_F(RoomOfSharedSessions, IsKnownHoweverSessionsComeChangeAndGo) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto any = [&](std::size_t below) {
        return std::uniform_int_distribution<std::size_t>(0, below - 1)(random);
    };
    std::vector<std::string> ids{create()};
    for (int i = 0; i < 400; ++i) {
        now_ = now_.load() + (i % 50 == 0 ? 10min : 1s);
        std::string& id = ids[any(ids.size())];
        const auto lease = sessions_.open(id, patience);
        if (!lease) {
            id = create(any(2) ? u"G" : u"", any(4000));
            continue;
        }
        switch (any(6)) {
            case 0:
                lease->data().values.put(u"v", Text(any(8000), u'x'));
                break;
            case 1:
                lease->data().values.put(u"QUENDRAID", u"G");
                break;
            case 2:
                lease->data().values.remove_all();
                break;
            case 3:
                lease->abandon();
                break;
            case 4:
                lease->renew_id(), lease->save(), id = lease->id();
                break;
            case 5:
                ids.push_back(create({}, any(100)));
                break;
        }
        if (any(40) == 0) sessions_.end_idle();
    }
    EXPECT_EQ(size(), counted());
    EXPECT_EQ(sessions_.shared_counts()->live, keys().size());
    now_ = now_.load() + 1h;
    for (int i = 0; i < 10; ++i) sessions_.end_idle();
    EXPECT_EQ(size(), 0u);
}

TEST_F(RoomOfSharedSessions, OfThoseThatTheStoreItselfHasDroppedIsFree) {
    for (int i = 0; i < 4; ++i) create();
    for (const std::string& key : keys()) server_.ask({"DEL", key});
    now_ = now_.load() + 20min;
    create();
    EXPECT_EQ(size(), counted());
}

TEST_F(RoomOfSharedSessions, ThatTheStoreHasNotIsSaidAndSessionsGoOnAsTheyWere) {
    const std::string id = create();
    server_.ask({"CONFIG", "SET", "maxmemory", "1"});
    EXPECT_THROW(create(), StoreAway);
    EXPECT_TRUE(is_there(id));
    const auto lease = sessions_.open(id, patience);
    ASSERT_TRUE(lease);
    EXPECT_EQ(sessions_.login_of(id).guid, u"");
    lease->data().values.put(u"v", u"larger");
    EXPECT_THROW(lease->close(), StoreAway);
    EXPECT_TRUE(sessions_.open(id, 30s)) << "and nobody waits for who could not store";
}

}  // namespace
}  // namespace orvo::web
