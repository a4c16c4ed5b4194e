// How a session waits for an answer: asking for it again and again, or asleep.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <future>
#include <string>
#include <thread>

#include "suite/directory/ldap/wire/session.h"
#include "tests/suite/directory/ldap/support/peer.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr Limits asking{3s, 10s, 10s, 5s};
constexpr Limits sleeping{3s, 10s, 10s, 0us};

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

// How many of the next requests this thread sleeps for, up to 100.
int requests_slept_for(Session& session) {
    int slept = 0;
    while (slept < 100 && sleeps_of_request(session) > 0) ++slept;
    return slept;
}

TEST(AnAnswer, IsSleptForFifteenTimesAfterAskingInVain) {
    Peer peer(answering_after(25ms));
    Session session = peer.session(asking);
    int fewest = 100;
    for (int round = 0; round < 5 && fewest > 15; ++round) {
        session.set_limits({3s, 10s, 10s, 15ms});
        sleeps_of_request(session);
        session.set_limits(asking);
        fewest = std::min(fewest, requests_slept_for(session));
    }
    EXPECT_EQ(fewest, 15) << "more where this thread was kept from asking";
}

// Shares one processor with a thread that computes until the end.
class BusyProcessor {
public:
    BusyProcessor() {
        ::sched_getaffinity(0, sizeof before_, &before_);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(::sched_getcpu(), &one);
        ::sched_setaffinity(0, sizeof one, &one);
        thread_ = std::thread([this] {
            while (!is_over_) {
            }
        });
    }
    ~BusyProcessor() {
        is_over_ = true;
        thread_.join();
        ::sched_setaffinity(0, sizeof before_, &before_);
    }
    BusyProcessor(const BusyProcessor&) = delete;

private:
    cpu_set_t before_;
    std::atomic<bool> is_over_ = false;
    std::thread thread_;
};

TEST(AnAnswer, IsAskedForByGivingWay) {
    Peer peer(answering_after(200ms));
    Session session = peer.session(asking);
    const BusyProcessor busy;
    const auto time_used = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
    const auto before = time_used();
    sleeps_of_request(session);
    EXPECT_LT(time_used() - before, 50ms);
}

// Giving way to a thread that computes takes as long as that is allowed to, some milliseconds.
TEST(AnAnswer, IsSleptForTheLongerTheLongerAskingTook) {
    Peer peer(answering_after(1ms));
    Session session = peer.session(asking);
    const BusyProcessor busy;
    int most = 0;
    for (int round = 0; round < 5 && most <= 60; ++round) {
        session.set_limits({3s, 10s, 10s, 50us});
        sleeps_of_request(session);
        session.set_limits(asking);
        most = std::max(most, requests_slept_for(session));
    }
    EXPECT_GT(most, 60);
}

TEST(AnAnswer, ThatNeverComesIsGivenUpAfterAskingAndSleeping) {
    Peer peer([](int connection) { take_everything(connection); });
    Session session = peer.session(Limits{3s, 200ms, 200ms, 1ms});
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
