// Machines of a site that share their sessions.

#include "host/web/sessions/redis_sessions.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "tests/host/web/shared_site.h"
#include "tests/support/faulty_proxy.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class SharedSessions : public testing::Test {
protected:
    StoreClock clock() {
        return [this] { return now_.load(); };
    }
    static std::string create(RedisSessions& sessions, const Variant& value = u"") {
        const auto lease = sessions.create();
        lease->data().values.put(u"v", value);
        lease->close();
        return lease->id();
    }
    static Variant value_of(RedisSessions& sessions, const std::string& id) {
        const auto lease = sessions.open(id, 0ms);
        return lease ? lease->data().values.get(u"v") : Variant(u"no session");
    }
    static int status_of(const std::function<void()>& request) {
        try {
            request();
            return 200;
        } catch (const Refusal& refusal) {
            return refusal.status;
        }
    }
    // Whether it comes to be so.
    static bool seen(const std::function<bool()>& holds) {
        const auto end = std::chrono::steady_clock::now() + 10s;
        while (!holds() && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(1ms);
        return holds();
    }
    store::Settings by(const FaultyProxy& proxy) const {
        store::Settings settings = store_settings(server_);
        settings.addresses = {{"127.0.0.1", proxy.port()}};
        return settings;
    }
    static std::uint64_t commands(SharedStore& store) { return store.redis()->counts().commands; }

    std::atomic<std::chrono::milliseconds> now_{24h};
    RedisServer server_;
    std::unique_ptr<SharedStore> one_ = machine_of(server_, clock());
    std::unique_ptr<SharedStore> two_ = machine_of(server_, clock());
    RedisSessions first_{*one_}, second_{*two_};
};

TEST_F(SharedSessions, AreSeenByAllMachinesAsTheLastRequestLeftThem) {
    const std::string id = create(first_, u"one");
    EXPECT_EQ(value_of(second_, id), Variant(u"one"));
    second_.open(id, 0ms)->data().values.put(u"v", u"two");
    EXPECT_EQ(value_of(first_, id), Variant(u"two"));
    {
        const auto lease = first_.open(id, 0ms);
        lease->data().values.put(u"QUENDRAID", u"G");
        lease->renew_id();
        lease->close();
        EXPECT_EQ(second_.login_of(lease->id()).guid, u"G");
        EXPECT_EQ(value_of(second_, lease->id()), Variant(u"two"));
    }
    EXPECT_EQ(value_of(second_, id), Variant(u"no session"));
}

TEST_F(SharedSessions, AreHeldByOneRequestOfAllMachines) {
    const std::string id = create(first_);
    auto lease = first_.open(id, 0ms);
    EXPECT_EQ(status_of([&] { second_.open(id, 20ms); }), 503);
    EXPECT_EQ(status_of([&] { second_.open(id, 1h, [] { return false; }); }), 503);
    EXPECT_EQ(second_.counts().refused, 2u);
    auto waits = std::async(std::launch::async, [&] { return second_.open(id, 30s) != nullptr; });
    EXPECT_TRUE(seen([&] { return second_.counts().waited == 3; }));
    lease.reset();
    EXPECT_TRUE(waits.get());
}

TEST_F(SharedSessions, LoseNoChangeOfRequestsOnSeveralMachines) {
    constexpr int threads = 4, rounds = 100;
    const std::string id = create(first_, 0);
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([&, &sessions = i % 2 ? first_ : second_] {
            for (int round = 0; round < rounds; ++round) {
                const auto lease = sessions.open(id, 60s);
                NamedValues& values = lease->data().values;
                values.put(u"v", values.get(u"v").to<std::int32_t>() + 1);
                lease->close();
            }
        });
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(value_of(first_, id), Variant(threads * rounds));
}

TEST_F(SharedSessions, TakeOneRoundTripOfARequestTwoWhereItChangesThemAndOneOfANewSession) {
    const auto machine = machine_of(server_, clock(), no_end_of_gathering);
    RedisSessions sessions(*machine);
    create(sessions);
    auto before = commands(*machine);
    const std::string id = create(sessions, u"one");
    EXPECT_EQ(commands(*machine) - before, 1u);
    before = commands(*machine);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(value_of(sessions, id), Variant(u"one"));
    EXPECT_EQ(commands(*machine) - before, 3u);
    before = commands(*machine);
    sessions.open(id, 0ms)->data().values.put(u"v", u"two");
    EXPECT_EQ(commands(*machine) - before, 2u);
    before = commands(*machine);
    EXPECT_EQ(sessions.open("", 0ms), nullptr);
    EXPECT_EQ(sessions.open("no identifier of ours", 0ms), nullptr);
    EXPECT_EQ(commands(*machine) - before, 0u);
}

TEST_F(SharedSessions, ThatWereNotChangedAreReleasedSoon) {
    const std::string id = create(first_, u"one");
    value_of(first_, id);
    EXPECT_TRUE(second_.open(id, 30s));
}

TEST_F(SharedSessions, ThatWereNotChangedAreReleasedByTheNextRequestOfTheirMachine) {
    const auto machine = machine_of(server_, clock(), no_end_of_gathering);
    RedisSessions sessions(*machine);
    const std::string id = create(sessions, u"one"), next = create(sessions, u"next");
    value_of(sessions, id);
    EXPECT_EQ(status_of([&] { second_.open(id, 0ms); }), 503);
    value_of(sessions, next);
    EXPECT_EQ(value_of(second_, id), Variant(u"one"));
    EXPECT_EQ(status_of([&] { second_.open(next, 0ms); }), 503);
}

TEST_F(SharedSessions, ThatWereNotChangedAreReleasedWhenTheirProgramEnds) {
    auto machine = machine_of(server_, clock(), no_end_of_gathering);
    auto sessions = std::make_unique<RedisSessions>(*machine);
    const std::string id = create(*sessions, u"one");
    value_of(*sessions, id);
    EXPECT_EQ(status_of([&] { second_.open(id, 0ms); }), 503);
    sessions.reset();
    machine.reset();
    EXPECT_EQ(value_of(second_, id), Variant(u"one"));
}

TEST_F(SharedSessions, ThatWereToBeReleasedWhenTheStoreWentAwayAreReleasedWhenItIsBack) {
    FaultyProxy proxy(server_.port());
    const auto machine = machine_of(by(proxy), clock(), no_end_of_gathering);
    RedisSessions sessions(*machine);
    const std::string id = create(sessions, u"one"), next = create(sessions, u"next");
    value_of(sessions, id);
    proxy.refuse_and_reset();
    EXPECT_THROW(sessions.open(next, 0ms), StoreAway);
    EXPECT_EQ(status_of([&] { second_.open(id, 0ms); }), 503);
    proxy.pass_on();
    // By the clock of the test its lock does not end.
    EXPECT_TRUE(second_.open(id, 30s));
}

TEST_F(SharedSessions, ThatWereNotChangedAreGivenBackThoughTheStoreIsAway) {
    const std::string id = create(first_, u"one");
    const auto lease = first_.open(id, 0ms);
    server_.kill();
    EXPECT_NO_THROW(lease->close());
}

TEST_F(SharedSessions, AreUsedAtTheEndOfALongRequestToo) {
    RedisSessions sessions(*one_, {.timeout = 20min}, 0ms);
    const std::string id = create(sessions, u"one");
    auto lease = sessions.open(id, 0ms);
    now_ = now_.load() + 19min;
    lease.reset();
    now_ = now_.load() + 19min;
    EXPECT_EQ(value_of(sessions, id), Variant(u"one"));
}

TEST_F(SharedSessions, AreWrittenWhereTheyWereChangedAlone) {
    const std::string id = create(first_, u"one");
    const std::string name = store::Keyring::name_of(id);
    const auto content = [&] { return server_.ask({"HGET", "orvo:session:" + name, "v"}); };
    const std::string before = content();
    first_.open(id, 0ms)->data().values.put(u"v", u"one");
    EXPECT_EQ(content(), before);
    first_.open(id, 0ms)->data().values.put(u"v", u"two");
    EXPECT_NE(content(), before);
}

TEST_F(SharedSessions, OfAMachineThatIsCutOffAreFreeWhenTheirLockEndsAndItOverwritesNothing) {
    FaultyProxy proxy(server_.port());
    const auto cut_off = machine_of(by(proxy), clock());
    RedisSessions lost(*cut_off);
    const std::string id = create(first_, u"one");
    const auto lease = lost.open(id, 0ms);
    lease->data().values.put(u"v", u"late");
    proxy.refuse_and_reset();
    now_ = now_.load() + SharedLocks::life - 1ms;
    EXPECT_EQ(status_of([&] { second_.open(id, 0ms); }), 503);
    now_ = now_.load() + 1ms;
    second_.open(id, 0ms)->data().values.put(u"v", u"two");
    proxy.pass_on();
    // The first attempts may find the store away still.
    while (status_of([&] { lost.require(); }) != 200) std::this_thread::yield();
    EXPECT_EQ(status_of([&] { lease->close(); }), 503);
    EXPECT_EQ(lost.counts().lost, 1u);
    EXPECT_EQ(value_of(first_, id), Variant(u"two"));
}

TEST_F(SharedSessions, AreHeldForAsLongAsARequestLasts) {
    const auto real = machine_of(server_);
    RedisSessions sessions(*real);
    const std::string id = create(sessions);
    const auto lease = sessions.open(id, 0ms);
    const std::string key = "orvo:session:" + store::Keyring::name_of(id);
    const auto until = [&] { return std::stoll(server_.ask({"HGET", key, "u"})); };
    const auto first = until();
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (until() == first && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(10ms);
    EXPECT_GT(until(), first) << "its lock is extended";
}

TEST_F(SharedSessions, EndOnceInAllMachines) {
    std::atomic<int> ended = 0;
    for (RedisSessions* sessions : {&first_, &second_})
        sessions->on_end([&](SessionData) { ++ended; });
    constexpr int count = 150;
    for (int i = 0; i < count; ++i) create(i % 2 ? first_ : second_);
    now_ = now_.load() + 20min;
    std::vector<std::thread> all;
    for (RedisSessions* sessions : {&first_, &second_})
        all.emplace_back([sessions] {
            for (int i = 0; i < 4; ++i) sessions->end_idle();
        });
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(ended, count);
    EXPECT_EQ(first_.shared_counts()->live, 0u);
}

TEST_F(SharedSessions, StayWhenAProgramEnds) {
    int ended = 0;
    first_.on_end([&](SessionData) { ++ended; });
    const std::string id = create(first_, u"one");
    first_.end_all();
    EXPECT_EQ(ended, 0);
    EXPECT_EQ(value_of(second_, id), Variant(u"one"));
}

TEST_F(SharedSessions, ShowNothingInTheStore) {
    const auto lease = first_.create();
    lease->data().values.put(u"REMOTE_PASSWORD", u"sample-password");
    lease->data().values.put(u"REMOTE_ACCOUNT", u"cn=jsmith,ou=Users,o=Shop");
    lease->close();
    const std::string dump = server_.dump();
    EXPECT_NE(dump.find("orvo:session:"), std::string::npos);
    for (const std::string& secret : {lease->id(), lease->data().form_token,
                                      std::string("sample-password"), std::string("jsmith")}) {
        EXPECT_EQ(dump.find(secret), std::string::npos) << secret;
        std::string wide;
        for (const char c : secret) (wide += c) += '\0';
        EXPECT_EQ(dump.find(wide), std::string::npos) << secret;
    }
}

TEST_F(SharedSessions, OfAnotherSiteOrPutInAnothersPlaceAreNone) {
    const std::string mine = create(first_, u"mine"), other = create(first_, u"other");
    const std::string key = "orvo:session:";
    const std::string sealed = server_.ask({"HGET", key + store::Keyring::name_of(other), "v"});
    ASSERT_FALSE(sealed.empty());
    server_.ask({"EVAL", "redis.call('HSET', KEYS[1], 'v', redis.call('HGET', KEYS[2], 'v'))", "2",
                 key + store::Keyring::name_of(mine), key + store::Keyring::name_of(other)});
    EXPECT_EQ(first_.open(mine, 0ms), nullptr);
    EXPECT_EQ(first_.login_of(mine).guid, u"");
    EXPECT_EQ(value_of(first_, other), Variant(u"other"));
}

TEST_F(SharedSessions, CannotBeHadWhileTheStoreIsAwayAndCanWithinASecondOfItsReturn) {
    const auto real = machine_of(server_);
    RedisSessions sessions(*real);
    const std::string id = create(sessions, u"one");
    EXPECT_EQ(value_of(sessions, id), Variant(u"one"));
    server_.freeze();
    EXPECT_THROW(sessions.open(id, 0ms), StoreAway);
    EXPECT_THROW(sessions.create(), StoreAway);
    EXPECT_THROW(sessions.login_of(id), StoreAway);
    EXPECT_THROW(sessions.require(), StoreAway);
    sessions.end_idle();
    server_.go_on();
    // What was sent before may be done now, and have locked the session; that ends, too.
    const auto end = std::chrono::steady_clock::now() + 1s;
    Variant value;
    while (std::chrono::steady_clock::now() < end && value != Variant(u"one")) {
        try {
            value = value_of(sessions, id);
        } catch (const Refusal&) {
            std::this_thread::sleep_for(10ms);
        }
    }
    EXPECT_EQ(value, Variant(u"one"));
}

TEST_F(SharedSessions, AreNotKeptByWhoeverAskedForThemAndCouldNotWaitForTheAnswer) {
    FaultyProxy proxy(server_.port());
    const auto slow = machine_of(by(proxy)), other = machine_of(server_);
    RedisSessions lost(*slow), sessions(*other);
    const std::string id = create(lost, u"one");
    const std::string key = "orvo:session:" + store::Keyring::name_of(id);
    const auto holder = [&] { return server_.ask({"HGET", key, "t"}); };
    // The store knows the script from now on, and carries it out at once.
    EXPECT_EQ(value_of(sessions, id), Variant(u"one"));
    EXPECT_TRUE(seen([&] { return server_.ask({"HEXISTS", key, "u"}) == "0"; }));
    const std::string before = holder();
    proxy.slow_down(1h);
    EXPECT_THROW(lost.open(id, 0ms), StoreAway);
    EXPECT_NE(holder(), before) << "the question has arrived";
    proxy.pass_on();
    EXPECT_NE(sessions.open(id, SharedLocks::life / 2), nullptr);
}

TEST_F(SharedSessions, AreToldToHaveNoRoomOnceInAWhileAndNotToBeBackMeanwhile) {
    std::mutex lock;
    std::vector<std::string> said;
    {
        const auto machine = machine_of(store_settings(server_), clock(), no_end_of_gathering,
                                        [&](const std::string& sentence) {
                                            const std::lock_guard guard(lock);
                                            said.push_back(sentence);
                                        });
        RedisSessions sessions(*machine);
        server_.ask({"CONFIG", "SET", "maxmemory", "1"});
        for (int i = 0; i < 5; ++i) {
            EXPECT_THROW(create(sessions), StoreAway);
            sessions.require();
        }
    }
    ASSERT_EQ(said.size(), 1u) << said.back();
    EXPECT_NE(said[0].find("it is full: OOM command not allowed"), std::string::npos) << said[0];
}

TEST_F(SharedSessions, ThatCouldNotBeStoredWereNotTold) {
    auto lease = first_.create();
    lease->data().values.put(u"v", 1);
    server_.kill();
    EXPECT_THROW(lease->save(), StoreAway);
    EXPECT_THROW(lease->close(), StoreAway);
    server_.start();
    while (status_of([&] { first_.require(); }) != 200) std::this_thread::yield();
    EXPECT_EQ(first_.open(lease->id(), 0ms), nullptr);
}

}  // namespace
}  // namespace orvo::web
