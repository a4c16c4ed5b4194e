// Sessions with servers that take their time, and how long they wait for them.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "suite/directory/ldap/wire/session.h"
#include "tests/suite/directory/ldap/support/expect_failure.h"
#include "tests/suite/directory/ldap/support/loopback.h"
#include "tests/suite/directory/ldap/support/peer.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

template <class Body>
milliseconds time_of(Body body) {
    const auto begin = steady_clock::now();
    body();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

// A signal that this thread gets in the middle of what it waits for.
class Interruption {
public:
    explicit Interruption(milliseconds after) {
        struct sigaction nothing {};
        nothing.sa_handler = [](int) {};
        nothing.sa_flags = SA_RESTART;
        ::sigaction(SIGUSR1, &nothing, &before_);
        thread_ = std::thread([after, waiting = ::pthread_self()] {
            std::this_thread::sleep_for(after);
            ::pthread_kill(waiting, SIGUSR1);
        });
    }
    ~Interruption() {
        thread_.join();
        ::sigaction(SIGUSR1, &before_, nullptr);
    }
    Interruption(const Interruption&) = delete;

private:
    struct sigaction before_ {};
    std::thread thread_;
};

// Listens, but has a full queue: whoever comes gets no answer at all.
class FullQueue {
public:
    FullQueue() : listener_(listen_on_loopback(port_)) {
        ::listen(listener_, 0);
        while (waiting_.size() < 100 && joined()) {
        }
    }
    ~FullQueue() {
        for (const int socket : waiting_) ::close(socket);
        ::close(listener_);
    }
    FullQueue(const FullQueue&) = delete;

    ServerAddress address() const { return ServerAddress::parse(u"127.0.0.1:" + decimal(port_)); }

private:
    bool joined() {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        waiting_.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
        ::connect(waiting_.back(), reinterpret_cast<const sockaddr*>(&address), size);
        pollfd connected{waiting_.back(), POLLOUT, 0};
        return ::poll(&connected, 1, 100) == 1;
    }

    int port_ = 0;
    int listener_;
    std::vector<int> waiting_;
};

void expect_not_connected(const ServerAddress& address, milliseconds limit) {
    const auto time = time_of([&] {
        const Failure failure = failure_of([&] { Session::connect(address, {limit, 3s}); });
        EXPECT_EQ(failure.number, error_number(0x8007203A));
        EXPECT_NE(failure.description.find(u"(85) The server did not answer in time."), Text::npos);
    });
    EXPECT_GE(time, limit - 10ms);
    EXPECT_LT(time, limit + 1s);
}

TEST(ASessionWithASlowPeer, SendsALargeRequestWholeBeforeItWaits) {
    constexpr std::size_t size = 12'000'000;
    Peer peer([](int connection) {
        std::string bytes(65'536, ' ');
        for (std::size_t taken = 0; taken < size;) {
            const ssize_t count = ::recv(connection, bytes.data(), bytes.size(), 0);
            if (count <= 0) return;
            taken += static_cast<std::size_t>(count);
            std::this_thread::sleep_for(1ms);
        }
        send(connection, modified(1));
        take_everything(connection);
    });
    Session session = peer.session(20s);
    const Replacement change{"description", {std::string(size, 'x')}};
    EXPECT_LT(time_of([&] { EXPECT_EQ(session.modify("o=Shop", {&change, 1}).code, 0); }), 15s);
}

TEST(ASessionWithASlowPeer, WaitsOnceForAnAnswerOfWhichTheBeginningCame) {
    Peer peer([](int connection) {
        std::this_thread::sleep_for(700ms);
        send(connection, modified(1).substr(0, 5));
        take_everything(connection);
    });
    Session session = peer.session(1s);
    const auto time = time_of([&] { EXPECT_EQ(session.remove("o=Shop").code, 85); });
    EXPECT_GE(time, 990ms);
    EXPECT_LT(time, 1500ms);
}

TEST(ASessionWithASlowPeer, WaitsNeitherLongerNorShorterBecauseOfASignal) {
    Peer peer([](int connection) { take_everything(connection); });
    Session session = peer.session(1s);
    const Interruption interruption(700ms);
    const auto time = time_of([&] { EXPECT_EQ(session.remove("o=Shop").code, 85); });
    EXPECT_GE(time, 990ms);
    EXPECT_LT(time, 1500ms);
}

TEST(ASessionWithASlowPeer, IsGivenUpWhereItIsNotConnectedInTime) {
    const FullQueue queue;
    expect_not_connected(queue.address(), 500ms);
}

TEST(ASessionWithASlowPeer, IsGivenUpNoSoonerBecauseOfASignal) {
    const FullQueue queue;
    const Interruption interruption(200ms);
    expect_not_connected(queue.address(), 500ms);
}

TEST(ASessionWithASlowPeer, WaitsAsLongAsTheLatestLimitSays) {
    Peer peer([](int connection) { take_everything(connection); });
    Session session = peer.session(1500ms);
    EXPECT_GE(time_of([&] { EXPECT_EQ(session.remove("o=Shop").code, 85); }), 1490ms);
    session.set_limits({3s, 200ms});
    EXPECT_LT(time_of([&] { EXPECT_EQ(session.remove("o=Shop").code, 85); }), 1000ms);
}

}  // namespace
}  // namespace orvo::directory::ldap
