// How a session waits for an answer: asking for it again and again, or asleep.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <future>
#include <string>
#include <thread>

#include "suite/directory/ldap/session.h"
#include "tests/suite/directory/ldap/peer.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr Limits asking{3s, 10s, 5s};
constexpr Limits sleeping{3s, 10s, 0us};

// Answers every modification after so long.
std::function<void(int connection)> answering_after(std::chrono::milliseconds time) {
    return [time](int connection) {
        std::string bytes(4096, ' ');
        for (int request = 1; ::recv(connection, bytes.data(), bytes.size(), 0) > 0; ++request) {
            std::this_thread::sleep_for(time);
            send(connection, modified(request));
        }
    };
}

// How often this thread went to sleep while it waited for one answer.
long sleeps_of_request(Session& session) {
    const auto sleeps = [] {
        rusage use{};
        ::getrusage(RUSAGE_THREAD, &use);
        return use.ru_nvcsw;
    };
    const Replacement change{"description", {"x"}};
    const long before = sleeps();
    EXPECT_EQ(session.modify("o=Shop", {&change, 1}).code, 0);
    return sleeps() - before;
}

// Of several requests: a thread may also sleep for another reason.
long fewest_sleeps(Session& session) {
    long fewest = sleeps_of_request(session);
    for (int more = 0; more < 4; ++more) fewest = std::min(fewest, sleeps_of_request(session));
    return fewest;
}

TEST(AnAnswer, IsAskedForByWhoWaitsAlone) {
    Peer peer(answering_after(5ms));
    Session session = peer.session(asking);
    EXPECT_EQ(fewest_sleeps(session), 0);
    session.set_limits(sleeping);
    EXPECT_GE(fewest_sleeps(session), 1);
    session.set_limits(asking);
    EXPECT_EQ(fewest_sleeps(session), 0);
}

TEST(AnAnswer, IsSleptForWhereSomebodyElseWaits) {
    std::promise<void> is_asked, is_to_answer;
    Peer other([&](int connection) {
        std::string bytes(4096, ' ');
        ::recv(connection, bytes.data(), bytes.size(), 0);
        is_asked.set_value();
        is_to_answer.get_future().wait();
        send(connection, modified(1));
        take_everything(connection);
    });
    Peer peer(answering_after(5ms));
    Session session = peer.session(asking);
    std::thread waiting([&] {
        Session waiting_session = other.session(sleeping);
        sleeps_of_request(waiting_session);
    });
    is_asked.get_future().wait();
    std::this_thread::sleep_for(50ms);
    EXPECT_GE(fewest_sleeps(session), 1);
    is_to_answer.set_value();
    waiting.join();
    EXPECT_EQ(fewest_sleeps(session), 0);
}

TEST(AnAnswer, IsSleptForFifteenTimesAfterAskingInVain) {
    Peer peer(answering_after(20ms));
    Session session = peer.session(Limits{3s, 10s, 1ms});
    EXPECT_GE(sleeps_of_request(session), 1) << "it asks, and then sleeps";
    session.set_limits(asking);
    for (int request = 1; request <= 15; ++request)
        EXPECT_GE(sleeps_of_request(session), 1) << request;
    EXPECT_EQ(fewest_sleeps(session), 0);
}

TEST(AnAnswer, ThatNeverComesIsGivenUpAfterAskingAndSleeping) {
    Peer peer([](int connection) { take_everything(connection); });
    Session session = peer.session(Limits{3s, 200ms, 1ms});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(session.remove("o=Shop").code, 85);
    const auto time = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(time, 190ms);
    EXPECT_LT(time, 2s);
}

TEST(AnAnswer, ThatIsTheEndOfTheConnectionIsNoticedWhileAsking) {
    Peer peer([](int connection) {
        std::string bytes(4096, ' ');
        ::recv(connection, bytes.data(), bytes.size(), 0);
        std::this_thread::sleep_for(20ms);
    });
    Session session = peer.session(asking);
    EXPECT_EQ(session.remove("o=Shop").code, 81);
}

}  // namespace
}  // namespace orvo::directory::ldap
