#include "suite/directory/ldap/pool/connection_pool.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "platform/objects/recordset/record_set_contract.h"
#include "tests/suite/directory/ldap/pool/pool_test.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

class ConnectionPoolTest : public PoolTest {
protected:
    // Runs `work` in so many threads, which all begin together.
    template <class Work>
    static void in_threads(int count, Work work) {
        std::atomic<int> waiting = count;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < count; ++thread)
            threads.emplace_back([&, thread] {
                --waiting;
                while (waiting > 0) std::this_thread::yield();
                work(thread);
            });
        for (std::thread& thread : threads) thread.join();
    }
};

TEST_F(ConnectionPoolTest, ObjectsOfOneUserShareAConnection) {
    const long before = connections_made();
    LdapEntry one({}, client_), other({}, client_);
    LdapSearch search({}, client_);
    bind(one, service());
    bind(other, service(), u"cn=jsmith");
    connect(search, service());
    EXPECT_EQ(values(one, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(values(other, u"sn"), Variant(Values{u"Smith"}));
    found(search, u"(cn=djansen)");
    EXPECT_EQ(open_connections(), 1);
    EXPECT_EQ(connections_made() - before, 1);
}

TEST_F(ConnectionPoolTest, AConnectionOutlivesItsObjects) {
    const long before = connections_made();
    for (int round = 0; round < 5; ++round) {
        LdapEntry entry({}, client_);
        bind(entry, service());
    }
    EXPECT_EQ(connections_made() - before, 1);
    EXPECT_EQ(open_connections(), 1);
}

TEST_F(ConnectionPoolTest, UsersAndPasswordChecksHaveConnectionsOfTheirOwn) {
    ServerLogin one = login(service()), other = login(user("jsmith")), nobody = login({"", ""});
    EXPECT_EQ(who_is(one), "dn:cn=orvo-service,ou=Services,o=Shop");
    EXPECT_EQ(who_is(other), "dn:cn=jsmith,ou=Users,o=Shop");
    EXPECT_EQ(who_is(nobody), "");
    EXPECT_EQ(checked(user("djansen")), 0);
    EXPECT_EQ(open_connections(), 4);
    EXPECT_EQ(who_is(nobody), "");
    EXPECT_EQ(who_is(other), "dn:cn=jsmith,ou=Users,o=Shop");
    EXPECT_EQ(who_is(one), "dn:cn=orvo-service,ou=Services,o=Shop");
    EXPECT_EQ(open_connections(), 4);
}

TEST_F(ConnectionPoolTest, AnOperationThatFindsNoPlaceWaitsAndSaysWhatForInTheEnd) {
    use({u"MaximumSize", u"WaitLimit"}, {1, 150});
    ServerLogin holder = login(service()), late = login(service());
    Failure failure(0, u"", u"");
    steady_clock::duration waited{};
    holder.search([&](Session&) {
        const auto begin = steady_clock::now();
        failure = failure_of([&] { who_is(late); });
        waited = steady_clock::now() - begin;
        return Result();
    });
    EXPECT_EQ(failure.number, error_number(0x8007200E));
    EXPECT_EQ(
        failure.description,
        from_utf8("(51) The server is busy. All 1 connections of this user to '" + server_.url() +
                  "' were in use for 150 ms (MaximumSize and WaitLimit of the connection "
                  "pool)."));
    EXPECT_GE(waited, 150ms);
    EXPECT_EQ(who_is(late), "dn:cn=orvo-service,ou=Services,o=Shop");
    EXPECT_EQ(open_connections(), 1);
}

TEST_F(ConnectionPoolTest, AnOperationThatWaitsGoesOnAsSoonAsThereIsAPlace) {
    use({u"MaximumSize"}, {1});
    ServerLogin holder = login(service());
    std::thread other;
    std::atomic<bool> is_done = false;
    holder.search([&](Session&) {
        other = std::thread([&] {
            ServerLogin late = login(service());
            EXPECT_EQ(who_is(late), "dn:cn=orvo-service,ou=Services,o=Shop");
            is_done = true;
        });
        await_waiting(service(), 1);
        EXPECT_FALSE(is_done);
        return Result();
    });
    other.join();
    EXPECT_TRUE(is_done);
    EXPECT_EQ(open_connections(), 1);
}

TEST_F(ConnectionPoolTest, ThoseWhoWaitAreServedInTheOrderInWhichTheyCame) {
    use({u"MaximumSize"}, {1});
    ServerLogin holder = login(service());
    std::vector<std::thread> others;
    std::mutex mutex;
    std::vector<int> served;
    holder.search([&](Session&) {
        for (int number = 0; number < 6; ++number) {
            others.emplace_back([&, number] {
                ServerLogin late = login(service());
                late.search([&](Session&) {
                    const std::lock_guard lock(mutex);
                    served.push_back(number);
                    return Result();
                });
            });
            await_waiting(service(), static_cast<std::size_t>(number) + 1);
        }
        return Result();
    });
    // Who comes now finds others waiting.
    who_is(holder);
    {
        const std::lock_guard lock(mutex);
        EXPECT_EQ(served.size(), 6u);
    }
    for (std::thread& other : others) other.join();
    EXPECT_EQ(served, (std::vector<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(open_connections(), 1);
}

TEST_F(ConnectionPoolTest, WhoGivesUpWaitingDoesNotKeepTheOthersFromTheirTurn) {
    use({u"MaximumSize", u"WaitLimit"}, {1, 100});
    ServerLogin holder = login(service()), impatient = login(service()), late = login(service());
    std::thread other;
    holder.search([&](Session&) {
        other = std::thread([&] {
            EXPECT_EQ(failure_of([&] { who_is(impatient); }).number, error_number(0x8007200E));
        });
        await_waiting(service(), 1);
        use({u"WaitLimit"}, {5000});
        std::thread patient([&] { EXPECT_NE(who_is(late), ""); });
        other.join();
        other = std::move(patient);
        await_waiting(service(), 1);
        return Result();
    });
    other.join();
}

TEST_F(ConnectionPoolTest, APlaceThatAnOperationLeavesByRaisingServesWhoWaitsForIt) {
    use({u"MaximumSize", u"WaitLimit"}, {1, 60'000});
    ServerLogin holder = login(service()), waiting = login(service());
    std::thread other;
    const auto begin = steady_clock::now();
    failure_of([&] {
        holder.search([&](Session&) -> Result {
            other = std::thread([&] { who_is(waiting); });
            await_waiting(service(), 1);
            throw Failure(5, u"test", u"raised");
        });
    });
    other.join();
    EXPECT_LT(steady_clock::now() - begin, 20s);
}

TEST_F(ConnectionPoolTest, PlacesThatAreAddedServeAllWhoWaitForOne) {
    use({u"MaximumSize", u"WaitLimit"}, {1, 60'000});
    const auto begin = steady_clock::now();
    ServerLogin holder = login(service());
    std::atomic<int> served = 0;
    holder.search([&](Session&) {
        std::vector<std::thread> others;
        for (int number = 0; number < 3; ++number)
            others.emplace_back([&] {
                ServerLogin late = login(service());
                late.search([&](Session&) {
                    ++served;
                    const auto end = steady_clock::now() + 2s;
                    while (served < 3 && steady_clock::now() < end) std::this_thread::yield();
                    EXPECT_EQ(served, 3) << "at the same time";
                    return Result();
                });
            });
        await_waiting(service(), 3);
        EXPECT_EQ(served, 0);
        use({u"MaximumSize"}, {4});
        for (std::thread& other : others) other.join();
        return Result();
    });
    EXPECT_LT(steady_clock::now() - begin, 20s);
}

TEST_F(ConnectionPoolTest, APlaceIsFreeAgainAfterAnOperationThatRaises) {
    use({u"MaximumSize", u"WaitLimit"}, {1, 100});
    ServerLogin user = login(service());
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(failure_of([&] {
                      user.search([](Session&) -> Result { raise_runtime_error(5); });
                  }).number,
                  5);
    EXPECT_EQ(who_is(user), "dn:cn=orvo-service,ou=Services,o=Shop");
    EXPECT_TRUE(comes_to(1));
}

TEST_F(ConnectionPoolTest, EightThreadsAlwaysWorkAsTheUserOfTheirConnection) {
    use({u"MaximumSize", u"MaximumIdle", u"WaitLimit"}, {2, 6, 60'000});
    const std::vector<User> users = {service(),     user("jsmith"), user("djansen"),
                                     user("admin"), user("glee"),   {"", ""}};
    std::atomic<int> wrong = 0, most = 0;
    std::atomic<bool> is_over = false;
    std::thread observer([&] {
        while (!is_over) most = std::max<int>(most, static_cast<int>(open_connections()));
    });
    in_threads(8, [&](int thread) {
        std::minstd_rand random(static_cast<unsigned>(thread) + 1);
        for (int round = 0; round < 150; ++round) {
            const User& as = users[random() % users.size()];
            ServerLogin login = this->login(as);
            const std::string expected = as.name.empty() ? "" : "dn:" + as.name;
            if (who_is(login) != expected) ++wrong;
            const User& other = users[1 + random() % 4];
            if (checked(other) != 0) ++wrong;
            if (checked({other.name, "wrong"}) != -1) ++wrong;
            LdapEntry entry({}, client_);
            bind(entry, service(), u"cn=jsmith", Values{u"sn"});
            if (values(entry, u"sn") != Variant(Values{u"Smith"})) ++wrong;
            if (who_is(login) != expected) ++wrong;
        }
    });
    is_over = true;
    observer.join();
    EXPECT_EQ(wrong, 0);
    // Two of each user, and of the checks.
    EXPECT_LE(most, 14);
    EXPECT_GE(most, 7);
    use({u"MaximumSize"}, {0});
    EXPECT_TRUE(comes_to(0)) << open_connections() << " connections are left";
}

TEST_F(ConnectionPoolTest, WorksAgainOnceTheServerIsBack) {
    use({u"MaximumSize"}, {4});
    std::deque<LdapEntry> entries;
    for (int number = 0; number < 4; ++number)
        bind(entries.emplace_back(std::nullopt, client_), service());
    // Four connections, all of which the server is about to lose.
    ServerLogin user = login(service());
    user.search([&](Session&) {
        ServerLogin second = login(service());
        second.search([&](Session&) {
            ServerLogin third = login(service());
            third.search([&](Session&) {
                values(entries[0], u"entryUUID");
                return Result();
            });
            return Result();
        });
        return Result();
    });
    EXPECT_EQ(open_connections(), 4);
    EXPECT_EQ(checked(this->user("jsmith")), 0);

    server_.stop();
    EXPECT_EQ(failure_of([&] { values(entries[1], u"entryUUID"); }).number,
              error_number(0x8007203A));
    EXPECT_EQ(failure_of([&] { checked(this->user("jsmith")); }).number, error_number(0x8007203A));
    server_.start();
    in_threads(4, [&](int thread) {
        EXPECT_EQ(values(entries[static_cast<std::size_t>(thread)], u"sn"),
                  Variant(Values{u"Jansen"}));
        EXPECT_EQ(checked(this->user("jsmith")), 0);
    });
    server_.stop();
    server_.start();
    EXPECT_EQ(bind_result(service()), 0);
    EXPECT_EQ(checked(this->user("jsmith")), 0);
}

// A connection that is lost while it is used, which no look at it beforehand shows.
TEST_F(ConnectionPoolTest, AReadingThatGetsLostIsDoneOnceMoreOnANewConnection) {
    RewritingProxy proxy(server_.server(), "cn=nothing", "cn=nothing");
    ServerLogin login(client_.pool(), from_utf8(proxy.server()), from_utf8(server_.service_dn()),
                      Secret::of_bytes(server_.service_password()), std::nullopt);
    who_is(login);
    proxy.cut_requests(1);
    EXPECT_EQ(who_is(login), "dn:cn=orvo-service,ou=Services,o=Shop");
    proxy.cut_requests(2);
    EXPECT_EQ(failure_of([&] { who_is(login); }).number, error_number(0x8007203A));
    EXPECT_EQ(who_is(login), "dn:cn=orvo-service,ou=Services,o=Shop");
}

TEST_F(ConnectionPoolTest, APasswordCheckThatGetsLostIsAFailureAndNotSentAgain) {
    RewritingProxy proxy(server_.server(), "cn=nothing", "cn=nothing");
    LdapValidator validator({}, client_);
    Text server = from_utf8(proxy.server()), container = u"ou=Users,o=Shop";
    validator.Open(server, container);
    Variant path = from_utf8(server_.user_dn("djansen")), password = u"shop-sample";
    EXPECT_EQ(validator.Validate(path, password), 0);
    const long before = binds();
    proxy.cut_answers(1);
    EXPECT_EQ(failure_of([&] { validator.Validate(path, password); }).number,
              error_number(0x8007203A));
    EXPECT_EQ(binds() - before, 1);
    EXPECT_EQ(validator.Validate(path, password), 0);
}

TEST_F(ConnectionPoolTest, AConnectionThatTheServerHasClosedIsNotTriedFirst) {
    ServerLogin login = this->login(service());
    who_is(login);
    server_.stop();
    server_.start();
    clock_.advance(150ms);  // at once it would be tried without looking
    int runs = 0;
    login.search([&](Session& session) {
        ++runs;
        return session.who_am_i();
    });
    EXPECT_EQ(runs, 1);
}

TEST_F(ConnectionPoolTest, ASilentServerCostsTheAnswerLimitAndTheConnection) {
    use({u"AnswerLimit"}, {200});
    LdapEntry entry({}, client_);
    bind(entry, service());
    const auto begin = steady_clock::now();
    server_.pause();
    const Failure failure = failure_of([&] { values(entry, u"sn"); });
    server_.resume();
    EXPECT_EQ(failure.description, no_answer_of(server_.server(), 200ms));
    EXPECT_LT(steady_clock::now() - begin, 3s);
    EXPECT_TRUE(comes_to(0));
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
}

TEST_F(ConnectionPoolTest, ASilentServerCostsABindTheAnswerLimitOnce) {
    use({u"AnswerLimit", u"RecheckAfter"}, {1000, 0});
    ASSERT_EQ(bind_result(service()), 0);
    const auto begin = steady_clock::now();
    server_.pause();
    EXPECT_EQ(bind_result(service()), error_number(0x8007203A));
    server_.resume();
    EXPECT_LT(steady_clock::now() - begin, 1900ms);
}

TEST_F(ConnectionPoolTest, ASilentServerCostsAPasswordCheckTheAnswerLimitOnce) {
    use({u"AnswerLimit"}, {1000});
    const auto begin = steady_clock::now();
    server_.pause();
    EXPECT_EQ(failure_of([&] { checked(user("jsmith")); }).number, error_number(0x8007203A));
    server_.resume();
    EXPECT_LT(steady_clock::now() - begin, 1900ms);
    EXPECT_EQ(checked(user("jsmith")), 0);
}

TEST_F(ConnectionPoolTest, ConnectionsThatWereIdleOrAliveForTooLongAreClosed) {
    use({u"IdleLimit", u"RecheckAfter"}, {1, 100});
    ServerLogin idle = login(user("jsmith")), other = login(service());
    who_is(idle);
    who_is(other);
    EXPECT_EQ(open_connections(), 2);
    clock_.advance(1100ms);
    who_is(other);
    EXPECT_TRUE(comes_to(1)) << "only the one that was made just now";

    use({u"IdleLimit", u"AgeLimit"}, {30, 1});
    const long made = connections_made();
    clock_.advance(1100ms);
    who_is(other);
    EXPECT_EQ(connections_made() - made, 1);
    EXPECT_TRUE(comes_to(1));
}

TEST_F(ConnectionPoolTest, ConnectionsThatWereIdleForTooLongAreClosedBeforeAnybodyWaits) {
    use({u"MaximumSize", u"IdleLimit", u"WaitLimit"}, {1, 1, 20'000});
    ServerLogin idle = login(user("jsmith")), holder = login(service());
    std::thread other;
    holder.search([&](Session&) {
        who_is(idle);
        clock_.advance(1050ms);
        EXPECT_EQ(open_connections(), 2);
        other = std::thread([&] {
            ServerLogin late = login(service());
            EXPECT_EQ(who_is(late), "dn:cn=orvo-service,ou=Services,o=Shop");
        });
        EXPECT_TRUE(comes_to(1)) << "that of the holder, for whom the other waits";
        return Result();
    });
    other.join();
}

TEST_F(ConnectionPoolTest, ManyUsersLeaveNoMoreIdleConnectionsThanAllowed) {
    use({u"MaximumIdle"}, {2});
    for (const char* name : {"jsmith", "djansen", "admin", "glee"}) {
        ServerLogin login = this->login(user(name));
        EXPECT_EQ(who_is(login), "dn:" + server_.user_dn(name));
    }
    EXPECT_TRUE(comes_to(2));
}

TEST_F(ConnectionPoolTest, ManyThreadsMayWorkWhereNoConnectionMayBeIdle) {
    use({u"MaximumIdle"}, {0});
    std::atomic<int> wrong = 0;
    in_threads(8, [&](int) {
        ServerLogin login = this->login(service());
        for (int round = 0; round < 200; ++round)
            if (who_is(login) != "dn:" + server_.service_dn()) ++wrong;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(comes_to(0));
}

TEST_F(ConnectionPoolTest, WhereManyAreIdleTheLeastRecentlyUsedOneIsBoundAnew) {
    use({u"MaximumIdle"}, {2});
    ServerLogin one = login(user("jsmith")), other = login(user("djansen"));
    who_is(one);
    who_is(other);
    const long made = connections_made();
    ServerLogin third = login(user("glee"));
    EXPECT_EQ(who_is(third), "dn:" + server_.user_dn("glee"));
    EXPECT_EQ(who_is(other), "dn:" + server_.user_dn("djansen")) << "used later than the first";
    EXPECT_EQ(connections_made(), made);
    EXPECT_EQ(who_is(one), "dn:" + server_.user_dn("jsmith"));
    EXPECT_EQ(connections_made(), made);
    EXPECT_TRUE(comes_to(2));
}

TEST_F(ConnectionPoolTest, AConnectionThatIsBoundAnewWithAWrongPasswordIsNobodysAndClosed) {
    use({u"MaximumIdle"}, {1});
    ServerLogin one = login(user("jsmith"));
    who_is(one);
    EXPECT_EQ(bind_result({server_.user_dn("glee"), "wrong"}), error_number(0x8007052E));
    EXPECT_TRUE(comes_to(0));
    EXPECT_EQ(who_is(one), "dn:" + server_.user_dn("jsmith"));
}

TEST_F(ConnectionPoolTest, ConnectionsOfPasswordChecksAreNotTakenForUsers) {
    use({u"MaximumIdle"}, {1});
    EXPECT_EQ(checked(user("jsmith")), 0);
    const long made = connections_made();
    ServerLogin one = login(user("glee"));
    EXPECT_EQ(who_is(one), "dn:" + server_.user_dn("glee"));
    EXPECT_EQ(connections_made(), made + 1);
}

}  // namespace
}  // namespace orvo::directory::ldap
