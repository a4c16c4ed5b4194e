// Sessions with servers that take their time, and how long they wait for them.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
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
#include "tests/suite/directory/expect_failure.h"
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

    ServerHost host() const { return {"127.0.0.1", static_cast<std::uint16_t>(port_)}; }

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

void expect_not_connected(const FullQueue& queue, const Limits& limits, milliseconds limit,
                          const std::string& setting) {
    const auto time = time_of([&] {
        const Failure failure = failure_of([&] { Session::connect(queue.host(), limits); });
        EXPECT_EQ(failure.number, error_number(0x8007203A));
        EXPECT_EQ(to_utf8(failure.description), "(85) The server did not answer in time. '" +
                                                    queue.host().url() +
                                                    "': there was no connection within " + setting);
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
    expect_not_connected(queue, Limits{500ms, 3s}, 500ms, "500 ms (ConnectLimit).");
    expect_not_connected(queue, Limits{3s, 500ms}, 500ms, "500 ms (AnswerLimit).");
}

TEST(ASessionWithASlowPeer, IsGivenUpNoSoonerBecauseOfASignal) {
    const FullQueue queue;
    const Interruption interruption(200ms);
    expect_not_connected(queue, Limits{500ms, 3s}, 500ms, "500 ms (ConnectLimit).");
}

TEST(ASessionWithASlowPeer, WaitsAsLongAsTheLatestLimitSays) {
    Peer peer([](int connection) { take_everything(connection); });
    Session session = peer.session(1500ms);
    EXPECT_GE(time_of([&] { EXPECT_EQ(session.remove("o=Shop").code, 85); }), 1490ms);
    Peer other([](int connection) { take_everything(connection); });
    Session patient = other.session(20s);
    patient.set_limits({3s, 200ms});
    EXPECT_LT(time_of([&] { EXPECT_EQ(patient.remove("o=Shop").code, 85); }), 1000ms);
}

SearchRequest search_in(Scope scope) {
    SearchRequest request;
    request.base = "o=Shop";
    request.scope = scope;
    return request;
}

TEST(ASessionWithASlowPeer, HasALimitForAnswersAndOneForSearches) {
    const auto ignore = [](EntryData&&) {};
    const std::pair<const char*, std::function<Result(Session&)>> answers[] = {
        {"bind", [](Session& s) { return s.bind("cn=a", Secret(u"b")); }},
        {"read", [](Session& s) { return s.read("o=Shop", {}); }},
        {"search of one", [&](Session& s) { return s.search(search_in(Scope::base), ignore); }},
        {"change of password", [](Session& s) { return s.change_password("", Secret(u"b")); }},
        {"who am I", [](Session& s) { return s.who_am_i(); }},
    };
    for (const auto& [name, ask] : answers) {
        Peer peer([](int connection) { take_everything(connection); });
        Session session = peer.session({3s, 100ms, 20s});
        Result result;
        EXPECT_LT(time_of([&] { result = ask(session); }), 10s) << name;
        EXPECT_EQ(result.code, 85) << name;
        EXPECT_EQ(result.message, "'ldap://" + peer.server() +
                                      "' gave no complete answer within 100 ms (AnswerLimit).")
            << name;
    }
    Peer peer([](int connection) { take_everything(connection); });
    Session session = peer.session({3s, 20s, 100ms});
    Result result;
    EXPECT_LT(time_of([&] { result = session.search(search_in(Scope::subtree), ignore); }), 10s);
    EXPECT_EQ(result.code, 85);
    EXPECT_EQ(result.message, "'ldap://" + peer.server() +
                                  "' gave no complete answer within 100 ms (OperationLimit).");
}

// The socket of this process that is connected to this port.
int socket_to(int port) {
    for (int descriptor = 3; descriptor < 1024; ++descriptor) {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
            address.sin_family == AF_INET && ntohs(address.sin_port) == port)
            return descriptor;
    }
    return -1;
}

TEST(AConnection, IsGivenUpByTheSystemWhereNobodyAcknowledgesOrLives) {
    Peer peer([](int connection) { take_everything(connection); });
    const Session session = peer.session({3s, 2500ms});
    const int descriptor = socket_to(peer.host().port);
    ASSERT_GE(descriptor, 0);
    const auto option = [descriptor](int level, int name) {
        int value = -1;
        socklen_t size = sizeof value;
        ::getsockopt(descriptor, level, name, &value, &size);
        return value;
    };
    EXPECT_EQ(option(IPPROTO_TCP, TCP_USER_TIMEOUT), 2500);
    EXPECT_EQ(option(SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPIDLE), 30);
    EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPINTVL), 5);
    EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPCNT), 3);
}

// Closes so that the client's next write fails.
void reset(int connection) {
    const linger at_once{1, 0};
    ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
}

TEST(ARequest, ThatCannotBeWrittenWasNotSent) {
    Peer peer(reset);
    Session session = peer.session(3s);
    while (session.seems_open()) std::this_thread::yield();
    const Result result = session.remove("o=Shop");
    EXPECT_EQ(result.code, 81);
    EXPECT_FALSE(result.sent);
}

TEST(ARequest, ThatIsNotAnsweredMayHaveBeenSent) {
    Peer silent([](int connection) { take_everything(connection); });
    Session session = silent.session(100ms);
    Result result = session.remove("o=Shop");
    EXPECT_EQ(result.code, 85);
    EXPECT_TRUE(result.sent);

    Peer closing([](int connection) {
        char byte = 0;
        ::recv(connection, &byte, 1, 0);
    });
    Session closed = closing.session(3s);
    result = closed.remove("o=Shop");
    EXPECT_EQ(result.code, 81);
    EXPECT_TRUE(result.sent);
}

TEST(ARequest, OfALostConnectionIsNotSent) {
    Peer peer([](int connection) { take_everything(connection); });
    Session session = peer.session(100ms);
    EXPECT_EQ(session.remove("o=Shop").code, 85);
    const Result result = session.remove("o=Shop");
    EXPECT_EQ(result.code, 81);
    EXPECT_FALSE(result.sent);
}

TEST(ARequest, ThatIsAnsweredWasSent) {
    Peer peer([](int connection) {
        char byte = 0;
        ::recv(connection, &byte, 1, 0);
        send(connection, modified(1));
        take_everything(connection);
    });
    Session session = peer.session(3s);
    const Replacement change{"description", {"x"}};
    const Result result = session.modify("o=Shop", {&change, 1});
    EXPECT_EQ(result.code, 0);
    EXPECT_TRUE(result.sent);
}

}  // namespace
}  // namespace orvo::directory::ldap
