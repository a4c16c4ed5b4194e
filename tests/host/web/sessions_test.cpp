// What holds for sessions wherever they are kept.

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <latch>
#include <set>
#include <thread>

#include "host/web/messages/http_message.h"
#include "host/web/server/worker_pool.h"
#include "host/web/sessions/memory_sessions.h"
#include "host/web/sessions/redis_sessions.h"
#include "tests/host/web/shared_site.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

struct Store {
    const char* name;
    bool is_shared;
};

class EverySessionStore : public testing::TestWithParam<Store> {
protected:
    static void TearDownTestSuite() { redis_server.reset(); }

    std::unique_ptr<SharedStore> make_shared_store() {
        if (!redis_server) redis_server = std::make_unique<RedisServer>();
        redis_server->ask({"FLUSHALL"});
        return machine_of(*redis_server, [this] {
            return std::chrono::floor<std::chrono::milliseconds>(now_.load().time_since_epoch()) +
                   24h;
        });
    }
    std::unique_ptr<SessionStore> make_store(const SessionLimits& limits) {
        if (!GetParam().is_shared)
            return std::make_unique<MemorySessions>(limits, [this] { return now_.load(); });
        if (!shared_) shared_ = make_shared_store();
        return std::make_unique<RedisSessions>(*shared_, limits);
    }
    void pass(SessionClock::duration time) { now_ = now_.load() + time; }
    // What there is where this is the only one.
    std::uint64_t count() const {
        const auto shared = sessions_->shared_counts();
        return shared ? shared->live : sessions_->counts().live.value();
    }
    std::uint64_t bytes() const {
        const auto shared = sessions_->shared_counts();
        return shared ? shared->bytes : sessions_->counts().bytes.value();
    }
    std::unique_ptr<SessionLease> open(const std::string& id,
                                       std::chrono::milliseconds patience = 1s) {
        return sessions_->open(id, patience);
    }
    std::string create(const Text& value = {}) {
        const auto lease = sessions_->create();
        if (!value.empty()) lease->data().values.put(u"v", value);
        lease->close();
        return lease->id();
    }
    Text value_of(const std::string& id) {
        const auto lease = open(id);
        return lease ? lease->data().values.get(u"v").to<Text>() : u"no session";
    }

    static inline std::unique_ptr<RedisServer> redis_server;
    // Read by the thread that releases locks, too.
    std::atomic<SessionClock::time_point> now_{};
    std::unique_ptr<SharedStore> shared_;
    std::unique_ptr<SessionStore> sessions_ =
        make_store({.timeout = 20min, .absolute = 60min, .most = 3});
};

INSTANTIATE_TEST_SUITE_P(Sessions, EverySessionStore,
                         testing::Values(Store{"Memory", false}, Store{"Redis", true}),
                         [](const auto& info) { return info.param.name; });

TEST_P(EverySessionStore, ASessionKeepsItsValuesBetweenRequests) {
    const std::string id = create(u"one");
    EXPECT_EQ(value_of(id), u"one");
    EXPECT_EQ(value_of(id), u"one");
}

TEST_P(EverySessionStore, IdentifiersCannotBeGuessedAndNoneComesTwice) {
    const auto many = make_store({});
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        const auto lease = many->create();
        EXPECT_EQ(lease->id().size(), 43u);
        EXPECT_EQ(lease->id().find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuv"
                                                "wxyz0123456789-_"),
                  std::string::npos);
        ids.insert(lease->id());
        ids.insert(lease->data().form_token);
    }
    EXPECT_EQ(ids.size(), 2000u);
}

TEST_P(EverySessionStore, AnIdentifierThatWasNotGivenOutIsNeverAdopted) {
    EXPECT_EQ(open("forged"), nullptr);
    EXPECT_EQ(open(""), nullptr);
    EXPECT_EQ(count(), 0u);
}

TEST_P(EverySessionStore, ASessionEndsAfterItsTimeoutWithoutARequest) {
    const std::string id = create(u"one");
    pass(20min - 1s);
    EXPECT_EQ(value_of(id), u"one");
    pass(20min - 1s);
    EXPECT_EQ(value_of(id), u"one");
    pass(20min);
    EXPECT_EQ(value_of(id), u"no session");
    EXPECT_EQ(count(), 0u);
}

TEST_P(EverySessionStore, ASessionMayHaveATimeoutOfItsOwn) {
    const std::string id = create(u"one");
    open(id)->data().timeout = 2min;
    pass(2min);
    EXPECT_EQ(value_of(id), u"no session");
}

TEST_P(EverySessionStore, ASessionEndsAfterItsLifetimeHoweverBusyItIs) {
    const std::string id = create(u"one");
    for (int i = 0; i < 5; ++i) {
        pass(10min);
        EXPECT_EQ(value_of(id), u"one");
    }
    pass(10min);
    EXPECT_EQ(value_of(id), u"no session");
}

TEST_P(EverySessionStore, ARenewedSessionHasItsValuesUnderTheNewIdentifierAlone) {
    const std::string old_id = create(u"one");
    std::string new_id;
    {
        const auto lease = open(old_id);
        lease->renew_id();
        new_id = lease->id();
    }
    EXPECT_NE(new_id, old_id);
    EXPECT_EQ(value_of(old_id), u"no session");
    EXPECT_EQ(value_of(new_id), u"one");
}

TEST_P(EverySessionStore, AnAbandonedSessionIsGoneAfterTheRequest) {
    const std::string id = create(u"one");
    {
        const auto lease = open(id);
        lease->abandon();
        EXPECT_EQ(lease->data().values.get(u"v"), Variant(u"one"));
    }
    EXPECT_EQ(value_of(id), u"no session");
}

TEST_P(EverySessionStore, ASecondRequestOfASessionWaitsAndIsRefusedInTheEnd) {
    const std::string id = create();
    const auto lease = open(id);
    try {
        open(id, 20ms);
        FAIL() << "two requests have the session";
    } catch (const Refusal& refusal) {
        EXPECT_EQ(refusal.status, 503);
        EXPECT_STREQ(refusal.what(), "Another request of this session takes too long.");
    }
}

TEST_P(EverySessionStore, ARequestThatMayNotWaitIsRefusedAtOnce) {
    const std::string id = create();
    int asked = 0;
    const auto no = [&] { return ++asked == 0; };
    auto lease = sessions_->open(id, 1h, no);
    EXPECT_TRUE(lease);
    EXPECT_EQ(asked, 0) << "it had not to wait";
    try {
        sessions_->open(id, 1h, no);
        FAIL() << "two requests have the session";
    } catch (const Refusal& refusal) {
        EXPECT_EQ(refusal.status, 503);
        EXPECT_STREQ(refusal.what(),
                     "Another request of this session runs, and too many requests wait.");
    }
    EXPECT_EQ(asked, 1);
}

TEST_P(EverySessionStore, WhoWaitsForAPlaceAmongTheWorkersDoesNotStopOtherSessions) {
    const std::string id = create(), other = create();
    std::promise<void> busy, end, asks, is_served;
    std::promise<bool> was_refused;
    const auto lease = open(id);
    WorkerPool pool(2, 1, 10);
    ASSERT_TRUE(pool.try_add([&] { busy.set_value(), end.get_future().wait(); },
                             WorkerPool::Kind::directory));
    busy.get_future().wait();
    ASSERT_TRUE(pool.try_add([&] {
        const auto try_wait = [&] {
            asks.set_value();
            EXPECT_EQ(is_served.get_future().wait_for(10s), std::future_status::ready);
            return pool.try_wait();
        };
        try {
            sessions_->open(id, 1h, try_wait);
            was_refused.set_value(false);
        } catch (const Refusal&) {
            was_refused.set_value(true);
        }
    }));
    asks.get_future().wait();
    EXPECT_TRUE(open(other));
    is_served.set_value();
    EXPECT_TRUE(was_refused.get_future().get()) << "the only place is taken";
    end.set_value();
}

TEST_P(EverySessionStore, ItsWaitingRequestsLeavePlacesAmongTheWorkersToOthers) {
    const auto sessions = make_store({.most_waiting = 2});
    const std::string id = sessions->create()->id();
    auto lease = sessions->open(id, 0ms);
    std::atomic<int> refused = 0, served = 0;
    std::promise<void> login;
    {
        WorkerPool pool(4, 3, 100);
        for (int i = 0; i < 20; ++i)
            ASSERT_TRUE(pool.try_add(
                [&] {
                    try {
                        sessions->open(id, 1h, [&] { return pool.try_wait(); });
                        ++served;
                    } catch (const Refusal&) {
                        ++refused;
                    }
                },
                WorkerPool::Kind::directory));
        ASSERT_TRUE(pool.try_add([&] { login.set_value(); }, WorkerPool::Kind::directory));
        EXPECT_EQ(login.get_future().wait_for(10s), std::future_status::ready);
        EXPECT_EQ(refused, 18);
        lease.reset();
    }
    EXPECT_EQ(served, 2);
}

TEST(RequestsOfOneSession, AreAsManyAsABrowserHasConnectionsWhereOthersHaveWorkersLeft) {
    for (const auto& [workers, requests] : std::initializer_list<std::pair<int, int>>{
             {1, 2}, {3, 2}, {4, 2}, {6, 4}, {8, 6}, {12, 6}, {13, 6}, {24, 12}})
        EXPECT_EQ(usual_requests_of_one_session(workers), requests) << workers;
}

TEST_P(EverySessionStore, ARequestThatWaitedDoesNotGetASessionThatWasRenewedMeanwhile) {
    const std::string id = create();
    auto lease = open(id);
    std::promise<void> waits;
    auto got = std::async(std::launch::async, [&] {
        return sessions_->open(id, 30s, [&] { return waits.set_value(), true; }) != nullptr;
    });
    waits.get_future().wait();
    lease->renew_id();
    lease.reset();
    EXPECT_FALSE(got.get());
}

TEST_P(EverySessionStore, WhereThereAreTooManyTheOldestUnusedOneGoesFirst) {
    const std::string used = create(u"used");
    pass(1min);
    const std::string unused = create();
    pass(1min);
    const std::string newest = create();
    create(u"another");
    EXPECT_EQ(count(), 3u);
    EXPECT_EQ(value_of(unused), u"no session");
    EXPECT_EQ(value_of(used), u"used");
    create(u"more");
    EXPECT_EQ(value_of(newest), u"no session");
    EXPECT_EQ(value_of(used), u"used");
}

TEST_P(EverySessionStore, ASessionInUseIsNotTakenAway) {
    std::vector<std::unique_ptr<SessionLease>> leases;
    for (int i = 0; i < 3; ++i) leases.push_back(open(create()));
    EXPECT_THROW(create(), Refusal);
    leases.back()->data().values.put(u"v", u"changed, so that it is given back at once");
    leases.pop_back();
    EXPECT_NE(create(), "");
}

// There is room for four sessions with a value each.
class MemoryOfSessions : public EverySessionStore {
protected:
    MemoryOfSessions() { sessions_ = make_store({.most_bytes = 100'000}); }

    std::string create_large(const Text& guid = {}) {
        pass(1ms);
        const auto lease = sessions_->create();
        lease->data().values.put(u"v", Text(10'000, u'x'));
        if (!guid.empty()) lease->data().values.put(u"QUENDRAID", guid);
        lease->close();
        return lease->id();
    }
    bool is_there(const std::string& id) {
        pass(1ms);
        const auto lease = open(id);
        // It is changed, so that it is given back at once, and may be taken from then on.
        if (lease) lease->data().values.put(u"seen", ++seen_);
        return lease != nullptr;
    }

    std::int32_t seen_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Sessions, MemoryOfSessions,
                         testing::Values(Store{"Memory", false}, Store{"Redis", true}),
                         [](const auto& info) { return info.param.name; });

TEST_P(MemoryOfSessions, IsBoundedAndTheOneUsedLongestAgoGoesFirst) {
    std::vector<std::string> ids;
    for (int i = 0; i < 4; ++i) ids.push_back(create_large());
    EXPECT_TRUE(is_there(ids[0]));
    ids.push_back(create_large());
    EXPECT_FALSE(is_there(ids[1]));
    for (const std::size_t i : {0u, 2u, 3u, 4u}) EXPECT_TRUE(is_there(ids[i])) << i;
    EXPECT_LE(bytes(), 100'000u);
    EXPECT_GT(bytes(), 80'000u);
    EXPECT_EQ(sessions_->counts().ended[static_cast<std::size_t>(SessionEnd::room)], 1u);
}

TEST_P(MemoryOfSessions, IsTakenFromThoseInWhichNobodyHasLoggedInFirst) {
    const std::string login = create_large(u"G1");
    const std::string guest = create_large();
    for (int i = 0; i < 30; ++i) create_large();
    EXPECT_TRUE(is_there(login));
    EXPECT_FALSE(is_there(guest));
    EXPECT_TRUE(is_there(create_large(u"G2"))) << "who logs in gets in";
    EXPECT_TRUE(is_there(login));
    for (int i = 0; i < 10; ++i) create_large(u"G3");
    EXPECT_FALSE(is_there(login)) << "in the end of the others, too";
    EXPECT_LE(bytes(), 100'000u);
}

TEST_P(EverySessionStore, WhatEndsIsToldOnceHoweverItEnds) {
    std::vector<Text> ended;
    sessions_->on_end(
        [&](SessionData session) { ended.push_back(session.values.get(u"v").to<Text>()); });
    const std::string idle = create(u"idle");
    open(create(u"abandoned"))->abandon();
    EXPECT_EQ(ended, (std::vector<Text>{u"abandoned"}));
    pass(20min);
    sessions_->end_idle();
    sessions_->end_idle();
    EXPECT_EQ(ended, (std::vector<Text>{u"abandoned", u"idle"}));
    EXPECT_EQ(open(idle), nullptr);
    const std::string asked = create(u"asked for");
    pass(20min);
    EXPECT_EQ(open(asked), nullptr);
    EXPECT_EQ(open(asked), nullptr);
    EXPECT_EQ(ended.size(), 3u);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(sessions_->counts().created, 3u);
    EXPECT_EQ(sessions_->counts().ended, (std::array<std::uint64_t, 5>{1, 2, 0, 0, 0}));
}

TEST_P(EverySessionStore, ASessionInUseDoesNotEndForWantOfRequests) {
    const std::string id = create(u"one");
    const auto lease = open(id);
    pass(3s);
    sessions_->end_idle();
    EXPECT_EQ(count(), 1u);
}

TEST_P(EverySessionStore, WhatIsSavedIsThereForTheNextRequestTogetherWithWhatFollows) {
    auto lease = sessions_->create();
    lease->data().values.put(u"v", u"saved");
    lease->save();
    lease->renew_id();
    lease->save();
    lease->data().values.put(u"w", u"later");
    const std::string id = lease->id();
    lease->close();
    lease = open(id);
    EXPECT_EQ(lease->data().values.get(u"v"), Variant(u"saved"));
    EXPECT_EQ(lease->data().values.get(u"w"), Variant(u"later"));
    EXPECT_EQ(count(), 1u);
}

TEST_P(EverySessionStore, WhoIsLoggedInIsToldWhileARequestHasTheSession) {
    EXPECT_EQ(sessions_->login_of("none").guid, u"");
    const std::string id = create(u"x");
    auto lease = open(id);
    lease->data().values.put(u"QuendraID", u"G1");
    lease->data().values.put(u"REMOTE_ACCOUNT", u"cn=a");
    EXPECT_EQ(sessions_->login_of(id).guid, u"") << "the request has not ended";
    lease.reset();
    lease = open(id);
    EXPECT_EQ(sessions_->login_of(id).guid, u"G1");
    EXPECT_EQ(sessions_->login_of(id).account, u"cn=a");
    lease.reset();
    pass(19min);
    sessions_->login_of(id);
    pass(19min);
    EXPECT_EQ(sessions_->login_of(id).guid, u"G1") << "the question counts as a request";
    pass(20min);
    EXPECT_EQ(sessions_->login_of(id).guid, u"");
}

TEST_P(EverySessionStore, IsAskedByThreadsOfWhichOneAtATimeHasASession) {
    constexpr int threads = 8, rounds = 200;
    const auto sessions = make_store({.most_waiting = threads});
    const std::string id = sessions->create()->id();
    std::vector<std::thread> all;
    std::atomic<int> inside = 0, mixed = 0;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                const auto lease = sessions->open(id, 30s);
                if (++inside != 1) ++mixed;
                NamedValues& values = lease->data().values;
                const Variant before = values.get(u"n");
                values.put(u"n", (before.is_empty() ? 0 : before.to<std::int32_t>()) + 1);
                --inside;
            }
        });
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(mixed, 0);
    EXPECT_EQ(sessions->open(id, 0ms)->data().values.get(u"n"), Variant(threads * rounds));
}

TEST_P(EverySessionStore, KeepsThreadsOfManyBrowsersApart) {
    const auto sessions = make_store({.most = 500});
    std::vector<std::thread> all;
    std::atomic<int> mixed = 0;
    for (int i = 0; i < 8; ++i)
        all.emplace_back([&, i] {
            std::string id;
            for (int round = 0; round < 300; ++round) {
                auto lease = sessions->open(id, 30s);
                if (!lease) lease = sessions->create();
                const Variant owner = lease->data().values.get(u"owner");
                if (!owner.is_empty() && owner != Variant(i)) ++mixed;
                lease->data().values.put(u"owner", i);
                if (round % 7 == 0) lease->renew_id();
                if (round % 31 == 0) lease->abandon();
                id = lease->id();
            }
        });
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(mixed, 0);
}

}  // namespace
}  // namespace orvo::web
