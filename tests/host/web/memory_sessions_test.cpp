#include "host/web/sessions/memory_sessions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <latch>
#include <set>
#include <thread>

#include "host/web/messages/http_message.h"
#include "host/web/server/worker_pool.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class MemorySessionsTest : public testing::Test {
protected:
    std::unique_ptr<SessionLease> open(const std::string& id,
                                       std::chrono::milliseconds patience = 0ms) {
        return sessions_.open(id, patience);
    }
    std::string create(const Text& value = {}) {
        const auto lease = sessions_.create();
        if (!value.empty()) lease->data().values.put(u"v", value);
        return lease->id();
    }
    Text value_of(const std::string& id) {
        const auto lease = open(id);
        return lease ? lease->data().values.get(u"v").to<Text>() : u"no session";
    }

    SessionClock::time_point now_{};
    MemorySessions sessions_{{.timeout = 20min, .absolute = 60min, .most = 3},
                             [this] { return now_; }};
};

TEST_F(MemorySessionsTest, ASessionKeepsItsValuesBetweenRequests) {
    const std::string id = create(u"one");
    EXPECT_EQ(value_of(id), u"one");
    EXPECT_EQ(value_of(id), u"one");
}

TEST_F(MemorySessionsTest, IdentifiersCannotBeGuessedAndNoneComesTwice) {
    MemorySessions many;
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        const auto lease = many.create();
        EXPECT_EQ(lease->id().size(), 43u);
        EXPECT_EQ(lease->id().find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuv"
                                                "wxyz0123456789-_"),
                  std::string::npos);
        ids.insert(lease->id());
        ids.insert(lease->data().form_token);
    }
    EXPECT_EQ(ids.size(), 2000u);
}

TEST_F(MemorySessionsTest, AnIdentifierThatWasNotGivenOutIsNeverAdopted) {
    EXPECT_EQ(open("forged"), nullptr);
    EXPECT_EQ(open(""), nullptr);
    EXPECT_EQ(sessions_.count(), 0u);
}

TEST_F(MemorySessionsTest, ASessionEndsAfterItsTimeoutWithoutARequest) {
    const std::string id = create(u"one");
    now_ += 20min - 1s;
    EXPECT_EQ(value_of(id), u"one");
    now_ += 20min - 1s;
    EXPECT_EQ(value_of(id), u"one");
    now_ += 20min;
    EXPECT_EQ(value_of(id), u"no session");
    EXPECT_EQ(sessions_.count(), 0u);
}

TEST_F(MemorySessionsTest, ASessionMayHaveATimeoutOfItsOwn) {
    const std::string id = create(u"one");
    open(id)->data().timeout = 2min;
    now_ += 2min;
    EXPECT_EQ(value_of(id), u"no session");
}

TEST_F(MemorySessionsTest, ASessionEndsAfterItsLifetimeHoweverBusyItIs) {
    const std::string id = create(u"one");
    for (int i = 0; i < 5; ++i) {
        now_ += 10min;
        EXPECT_EQ(value_of(id), u"one");
    }
    now_ += 10min;
    EXPECT_EQ(value_of(id), u"no session");
}

TEST_F(MemorySessionsTest, ARenewedSessionHasItsValuesUnderTheNewIdentifierAlone) {
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

TEST_F(MemorySessionsTest, AnAbandonedSessionIsGoneAfterTheRequest) {
    const std::string id = create(u"one");
    {
        const auto lease = open(id);
        lease->abandon();
        EXPECT_EQ(lease->data().values.get(u"v"), Variant(u"one"));
    }
    EXPECT_EQ(value_of(id), u"no session");
}

TEST_F(MemorySessionsTest, ASecondRequestOfASessionWaitsAndIsRefusedInTheEnd) {
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

TEST_F(MemorySessionsTest, ARequestThatMayNotWaitIsRefusedAtOnce) {
    const std::string id = create();
    int asked = 0;
    const auto no = [&] { return ++asked == 0; };
    auto lease = sessions_.open(id, 1h, no);
    EXPECT_TRUE(lease);
    EXPECT_EQ(asked, 0) << "it had not to wait";
    try {
        sessions_.open(id, 1h, no);
        FAIL() << "two requests have the session";
    } catch (const Refusal& refusal) {
        EXPECT_EQ(refusal.status, 503);
        EXPECT_STREQ(refusal.what(),
                     "Another request of this session runs, and too many requests wait.");
    }
    EXPECT_EQ(asked, 1);
}

TEST_F(MemorySessionsTest, WhoWaitsForAPlaceAmongTheWorkersDoesNotStopOtherSessions) {
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
            sessions_.open(id, 1h, try_wait);
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

TEST_F(MemorySessionsTest, ItsWaitingRequestsLeavePlacesAmongTheWorkersToOthers) {
    MemorySessions sessions({.most_waiting = 2});
    auto lease = sessions.create();
    const std::string id = lease->id();
    std::atomic<int> refused = 0, served = 0;
    std::promise<void> login;
    {
        WorkerPool pool(4, 3, 100);
        for (int i = 0; i < 20; ++i)
            ASSERT_TRUE(pool.try_add(
                [&] {
                    try {
                        sessions.open(id, 1h, [&] { return pool.try_wait(); });
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

TEST_F(MemorySessionsTest, ARequestThatWaitedDoesNotGetASessionThatWasRenewedMeanwhile) {
    const std::string id = create();
    auto lease = open(id);
    std::atomic<bool> got = true;
    std::thread waiting([&] { got = open(id, 5s) != nullptr; });
    std::this_thread::sleep_for(20ms);
    lease->renew_id();
    lease.reset();
    waiting.join();
    EXPECT_FALSE(got);
}

TEST_F(MemorySessionsTest, WhereThereAreTooManyTheOldestUnusedOneGoesFirst) {
    const std::string used = create(u"used");
    now_ += 1min;
    const std::string unused = create();
    now_ += 1min;
    const std::string newest = create();
    create(u"another");
    EXPECT_EQ(sessions_.count(), 3u);
    EXPECT_EQ(value_of(unused), u"no session");
    EXPECT_EQ(value_of(used), u"used");
    create(u"more");
    EXPECT_EQ(value_of(newest), u"no session");
    EXPECT_EQ(value_of(used), u"used");
}

TEST_F(MemorySessionsTest, ASessionInUseIsNotTakenAway) {
    std::vector<std::unique_ptr<SessionLease>> leases;
    for (int i = 0; i < 3; ++i) leases.push_back(sessions_.create());
    EXPECT_THROW(sessions_.create(), Refusal);
    leases.pop_back();
    EXPECT_NE(sessions_.create(), nullptr);
}

TEST_F(MemorySessionsTest, AreCountedAsTheyComeAndGo) {
    const std::string id = create(u"one");
    SessionCounts counts = sessions_.counts();
    EXPECT_EQ(counts.live, 1u);
    EXPECT_GT(counts.bytes, 0u);
    EXPECT_EQ(counts.created, 1u);
    EXPECT_EQ(counts.ended, (std::array<std::uint64_t, 5>{}));

    open(id)->abandon();
    create();
    now_ += 20min;
    sessions_.end_idle();
    const std::string busy = create();
    for (int i = 0; i < 6; ++i) {
        now_ += 10min;
        open(busy);
    }
    for (int i = 0; i < 4; ++i) create();
    sessions_.end_all();
    counts = sessions_.counts();
    EXPECT_EQ(counts.live, 0u);
    EXPECT_EQ(counts.bytes, 0u);
    EXPECT_EQ(counts.created, 7u);
    // By a page, idle, after its lifetime, for newer ones, with the program.
    EXPECT_EQ(counts.ended, (std::array<std::uint64_t, 5>{1, 1, 1, 1, 3}));
}

class SessionMemoryTest : public testing::Test {
protected:
    std::string create(const Text& guid = {}) {
        const auto lease = sessions_.create();
        lease->data().values.put(u"v", Text(10'000, u'x'));
        if (!guid.empty()) lease->data().values.put(u"QUENDRAID", guid);
        return lease->id();
    }
    bool is_there(const std::string& id) { return sessions_.open(id, 0ms) != nullptr; }

    MemorySessions sessions_{{.most_bytes = 100'000}};
};

TEST_F(SessionMemoryTest, OfAllSessionsIsBoundedAndTheOneUsedLongestAgoGoesFirst) {
    std::vector<std::string> ids;
    for (int i = 0; i < 4; ++i) ids.push_back(create());
    EXPECT_TRUE(is_there(ids[0]));
    ids.push_back(create());
    EXPECT_FALSE(is_there(ids[1]));
    for (const int i : {0, 2, 3, 4}) EXPECT_TRUE(is_there(ids[static_cast<std::size_t>(i)])) << i;
    EXPECT_LE(sessions_.bytes(), 100'000u);
    EXPECT_GT(sessions_.bytes(), 80'000u);
}

TEST_F(SessionMemoryTest, IsTakenFromThoseInWhichNobodyHasLoggedInFirst) {
    const std::string login = create(u"G1");
    const std::string guest = create();
    for (int i = 0; i < 100; ++i) create();
    EXPECT_TRUE(is_there(login));
    EXPECT_FALSE(is_there(guest));
    for (int i = 0; i < 10; ++i) create(u"G2");
    EXPECT_FALSE(is_there(login)) << "in the end of the others, too";
    EXPECT_LE(sessions_.bytes(), 100'000u);
}

TEST_F(SessionMemoryTest, ThatIsGivenBackCountsNoMore) {
    const std::string id = create();
    sessions_.open(id, 0ms)->data().values.remove_all();
    EXPECT_EQ(sessions_.bytes(), 0u);
    create();
    const std::string other = create();
    sessions_.open(other, 0ms)->abandon();
    EXPECT_LT(sessions_.bytes(), 25'000u);
    EXPECT_GT(sessions_.bytes(), 20'000u);
}

TEST_F(SessionMemoryTest, IsBoundedByANewLimitFromTheNextRequestOn) {
    const std::string first = create(), second = create();
    sessions_.set_limits({.most_bytes = 30'000});
    EXPECT_TRUE(is_there(second));
    EXPECT_FALSE(is_there(first));
}

TEST_F(MemorySessionsTest, WhoIsLoggedInIsToldWhileARequestHasTheSession) {
    EXPECT_EQ(sessions_.login_of("none").guid, u"");
    const std::string id = create(u"x");
    auto lease = open(id);
    lease->data().values.put(u"QuendraID", u"G1");
    lease->data().values.put(u"REMOTE_ACCOUNT", u"cn=a");
    EXPECT_EQ(sessions_.login_of(id).guid, u"") << "the request has not ended";
    lease.reset();
    lease = open(id);
    EXPECT_EQ(sessions_.login_of(id).guid, u"G1");
    EXPECT_EQ(sessions_.login_of(id).account, u"cn=a");
    lease.reset();
    now_ += 19min;
    sessions_.login_of(id);
    now_ += 19min;
    EXPECT_EQ(sessions_.login_of(id).guid, u"G1") << "the question counts as a request";
    now_ += 20min;
    EXPECT_EQ(sessions_.login_of(id).guid, u"");
}

TEST(SessionsUnderThreads, OneRequestAtATimeHasASession) {
    constexpr int threads = 8, rounds = 200;
    MemorySessions sessions({.most_waiting = threads});
    const std::string id = sessions.create()->id();
    std::vector<std::thread> all;
    std::atomic<int> inside = 0, mixed = 0;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                const auto lease = sessions.open(id, 30s);
                if (++inside != 1) ++mixed;
                NamedValues& values = lease->data().values;
                const Variant before = values.get(u"n");
                values.put(u"n", (before.is_empty() ? 0 : before.to<std::int32_t>()) + 1);
                --inside;
            }
        });
    for (std::thread& thread : all) thread.join();
    EXPECT_EQ(mixed, 0);
    EXPECT_EQ(sessions.open(id, 0ms)->data().values.get(u"n"), Variant(threads * rounds));
}

TEST(SessionsUnderThreads, ManyBrowsersDoNotMeet) {
    MemorySessions sessions({.most = 500});
    std::vector<std::thread> all;
    std::atomic<int> mixed = 0;
    for (int i = 0; i < 8; ++i)
        all.emplace_back([&, i] {
            std::string id;
            for (int round = 0; round < 300; ++round) {
                auto lease = sessions.open(id, 30s);
                if (!lease) lease = sessions.create();
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
