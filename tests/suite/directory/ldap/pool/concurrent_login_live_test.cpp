// Many who offer the same credentials at once.

#include <atomic>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "suite/directory/ldap/pool/lease.h"
#include "tests/suite/directory/ldap/pool/pool_test.h"
#include "tests/support/faulty_proxy.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

constexpr std::int32_t wrong_credentials = error_number(0x8007052E);

// At a server that takes a moment for each answer.
class ConcurrentLoginTest : public PoolTest {
protected:
    void slow_down(std::chrono::milliseconds answer = 200ms) { proxy_.slow_down(answer); }
    std::int32_t login_result(const User& as, std::optional<Limits> limits = {}) {
        return failure_of([&] {
                   ServerLogin(client_.pool(), from_utf8(proxy_.server()), from_utf8(as.name),
                               Secret(from_utf8(as.password)), limits)
                       .authenticate();
               })
            .number;
    }
    // The results of so many logins at once.
    std::vector<std::int32_t> login_results(int count, const User& as) {
        std::vector<std::int32_t> results(static_cast<std::size_t>(count));
        std::vector<std::thread> threads;
        for (std::int32_t& result : results)
            threads.emplace_back([&] { result = login_result(as); });
        for (std::thread& thread : threads) thread.join();
        return results;
    }
    ConnectionSetRef proxied_set_of(const User& as) {
        return client_.pool().set_of(ServerAddress::parse(from_utf8(proxy_.server())), as.name,
                                     Secret(from_utf8(as.password)));
    }
    static std::vector<std::int32_t> all(std::size_t count, std::int32_t result) {
        return std::vector<std::int32_t>(count, result);
    }

    FaultyProxy proxy_{std::stoi(server_.server().substr(server_.server().find(':') + 1))};
    const User jsmith = user("jsmith"), outdated{server_.user_dn("djansen"), "outdated"};
};

TEST_F(ConcurrentLoginTest, OfferAnOutdatedPasswordOnce) {
    slow_down();
    const long before = binds();
    EXPECT_EQ(login_results(5, outdated), all(5, wrong_credentials));
    EXPECT_EQ(binds() - before, 1);
}

TEST_F(ConcurrentLoginTest, AskOnceAboutCredentialsThatWereAcceptedAWhileAgo) {
    slow_down();
    EXPECT_EQ(login_results(5, jsmith), all(5, 0));
    clock_.advance(6s);
    const long before = binds();
    EXPECT_EQ(login_results(5, jsmith), all(5, 0));
    EXPECT_EQ(binds() - before, 1);
}

TEST_F(ConcurrentLoginTest, AllAskAtOnceWhereNoMomentIsAllowed) {
    const ConnectionSetRef set = proxied_set_of(outdated);
    const ConnectionSet::Question other(*set, client_.pool().settings(), clock_, 1h);
    use({u"RecheckAfter"}, {0});
    const long before = binds();
    const auto begin = steady_clock::now();
    EXPECT_EQ(login_results(5, outdated), all(5, wrong_credentials));
    EXPECT_LT(steady_clock::now() - begin, 3s) << "nobody waits for the other one's answer";
    EXPECT_EQ(binds() - before, 5);
}

TEST_F(ConcurrentLoginTest, DoNotWaitInTurnForAnswersThatAreOutdatedWhenTheyCome) {
    Client client(Clock::steady(), Client::Probing::by_caller);
    client.pool().configure(Variant(Values{u"RecheckAfter"}), Variant(Values{1}));
    slow_down(1100ms);
    const auto begin = steady_clock::now();
    std::vector<std::thread> threads;
    for (int session = 0; session < 5; ++session)
        threads.emplace_back([&] {
            ServerLogin(client.pool(), from_utf8(proxy_.server()), from_utf8(jsmith.name),
                        Secret(from_utf8(jsmith.password)), std::nullopt)
                .authenticate();
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_LT(steady_clock::now() - begin, 4 * 1100ms) << "two answers, one after the other";
}

TEST_F(ConcurrentLoginTest, DoNotWaitForAnAnswerForEver) {
    const ConnectionSetRef set = proxied_set_of(jsmith);
    const ConnectionSet::Question other(*set, client_.pool().settings(), clock_, 1h);
    EXPECT_EQ(login_result(jsmith, Limits{.answer = 100ms}), 0);
}

TEST_F(ConcurrentLoginTest, GoOnWhereTheServerHasFailedAnotherAndIsWellAgain) {
    const ConnectionSetRef set = proxied_set_of(jsmith);
    const ServerRef server = set->group().servers().front();
    std::optional<ConnectionSet::Question> other(std::in_place, *set, client_.pool().settings(),
                                                 clock_, 1h);
    const long before = connections_made();
    std::thread waiting([&] { EXPECT_EQ(login_result(jsmith), 0); });
    while (connections_made() == before) std::this_thread::yield();
    client_.servers().note_failure(*server, "A search took too long.");
    server->note_answer(1ms);
    other.reset();
    waiting.join();
}

// The one who has asked has given the place back to the one who changes the password.
TEST_F(ConcurrentLoginTest, KeepNoPlaceFromWhoChangesThePassword) {
    use({u"MaximumSize"}, {1});
    const ConnectionSetRef set = set_of(outdated);
    const long before = binds();
    std::unique_lock change(set->own_change());
    std::thread other([&] { EXPECT_EQ(bind_result(outdated), wrong_credentials); });
    while (binds() == before) std::this_thread::yield();
    EXPECT_EQ(failure_of([&] { const Lease lease(client_.pool(), set); }).number, 0);
    change.unlock();
    other.join();
}

TEST_F(ConcurrentLoginTest, LearnThatThePasswordIsWrongThoughNoPlaceIsFree) {
    use({u"MaximumSize", u"WaitLimit"}, {1, 100});
    const ConnectionSetRef set = set_of(outdated);
    const long before = binds();
    std::unique_lock change(set->own_change());
    std::thread other([&] { EXPECT_EQ(bind_result(outdated), wrong_credentials); });
    while (binds() == before) std::this_thread::yield();
    const Lease lease(client_.pool(), set);
    change.unlock();
    other.join();
    EXPECT_TRUE(set->refusal(client_.pool().settings(), clock_.now()));
    EXPECT_EQ(binds() - before, 1);
}

}  // namespace
}  // namespace orvo::directory::ldap
