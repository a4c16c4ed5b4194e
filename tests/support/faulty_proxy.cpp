#include "tests/support/faulty_proxy.h"

#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <system_error>

#include "tests/support/loopback_address.h"

namespace orvo {
namespace {

[[noreturn]] void raise(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// A socket bound to the port, which may be shared with other sockets of this user; 0: any port.
int bound_socket(int port) {
    const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int yes = 1;
    const sockaddr_in address = loopback_address(port);
    if (made < 0 || ::setsockopt(made, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes) != 0 ||
        ::bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        raise("no socket for a proxy");
    return made;
}

void send_at_once(int socket) {
    const int yes = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

bool is_there(const pollfd& one) { return (one.revents & (POLLIN | POLLHUP | POLLERR)) != 0; }

// The other side sees "connection reset".
void reset(int socket) {
    const linger at_once{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    ::close(socket);
}

}  // namespace

// One client's connection and the one to the server that belongs to it.
struct FaultyProxy::Passage {
    static constexpr auto held = Clock::time_point::max();

    // Bytes on their way, in order, each piece with the time from which it may go on. An empty
    // piece is the end of the connection.
    struct Piece {
        Clock::time_point due;
        std::string bytes;
    };
    struct Way {
        int from;
        int to;
        std::deque<Piece> pieces = {};
        bool has_ended = false;
        bool is_blocked = false;

        void receive(Clock::time_point due, const Listener& listener) {
            char bytes[1 << 14];
            const ssize_t received = ::recv(from, bytes, sizeof bytes, 0);
            if (has_ended || (received < 0 && errno == EAGAIN)) return;
            const std::string_view piece(bytes,
                                         static_cast<std::size_t>(std::max<ssize_t>(received, 0)));
            has_ended = piece.empty();
            if (listener && !has_ended) listener(piece);
            if (!pieces.empty()) due = std::max(due, pieces.back().due);
            pieces.push_back({due, std::string(piece)});
        }
        // False at the end of the connection.
        bool send_on(Clock::time_point now) {
            is_blocked = false;
            while (!pieces.empty() && pieces.front().due <= now) {
                std::string& bytes = pieces.front().bytes;
                if (bytes.empty()) return false;
                const ssize_t sent = ::send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL);
                if (sent < 0) {
                    is_blocked = errno == EAGAIN || errno == ENOTCONN;
                    return is_blocked;
                }
                bytes.erase(0, static_cast<std::size_t>(sent));
                if (bytes.empty()) pieces.pop_front();
            }
            return true;
        }
        // When there is something to send on, if the other side takes it.
        Clock::time_point next() const {
            return is_blocked || pieces.empty() ? held : pieces.front().due;
        }
        void release() {
            for (Piece& piece : pieces)
                if (piece.due == held) piece.due = Clock::now();
        }
    };

    // What to wait for on the socket from which `in` comes and to which `out` goes. One that has
    // ended and has nothing to take is left out: it would be reported as hung up again and again.
    static pollfd waits_for(const Way& in, const Way& out) {
        const int events = (in.has_ended ? 0 : POLLIN) | (out.is_blocked ? POLLOUT : 0);
        return {events != 0 ? in.from : -1, static_cast<short>(events), 0};
    }

    Passage(int client, int server, Listener hears)
        : listener(std::move(hears)), up{client, server}, down{server, client} {}
    Passage(const Passage&) = delete;
    ~Passage() {
        if (is_reset)
            reset(down.to);
        else
            ::close(down.to);
        ::close(up.to);
    }

    Listener listener;
    Way up;    // to the server
    Way down;  // to the client
    bool is_reset = false;
};

FaultyProxy::FaultyProxy(int server_port, ListenerMaker new_listener)
    : server_port_(server_port),
      new_listener_(std::move(new_listener)),
      reserved_(bound_socket(0)) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(reserved_, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        ::pipe2(wake_, O_CLOEXEC | O_NONBLOCK) != 0)
        raise("no proxy");
    port_ = ntohs(address.sin_port);
    listen();
    thread_ = std::thread([this] { serve(); });
}

FaultyProxy::~FaultyProxy() {
    tell([this] { is_ending_ = true; });
    thread_.join();
    stop_listening();
    for (const int one : {reserved_, wake_[0], wake_[1]}) ::close(one);
}

void FaultyProxy::pass_on() {
    tell([this] {
        is_silent_ = false;
        delay_ = {};
        if (listener_ < 0) listen();
        for (const auto& passage : passages_) {
            passage->up.release();
            passage->down.release();
        }
    });
}

void FaultyProxy::fall_silent() {
    tell([this] { is_silent_ = true; });
}

void FaultyProxy::slow_down(std::chrono::milliseconds delay) {
    tell([this, delay] { delay_ = delay; });
}

void FaultyProxy::refuse() {
    tell([this] { stop_listening(); });
}

void FaultyProxy::refuse_and_reset() {
    tell([this] {
        stop_listening();
        for (const auto& passage : passages_) passage->is_reset = true;
        passages_.clear();
    });
}

void FaultyProxy::tell(std::function<void()> action) {
    std::packaged_task<void()> task(std::move(action));
    auto done = task.get_future();
    {
        const std::lock_guard lock(mutex_);
        told_.push_back(std::move(task));
    }
    if (::write(wake_[1], "", 1) < 0 && errno != EAGAIN) raise("proxy");
    done.get();
}

void FaultyProxy::listen() {
    listener_ = bound_socket(port_);
    if (::listen(listener_, SOMAXCONN) != 0) raise("no proxy");
}

void FaultyProxy::stop_listening() {
    if (listener_ >= 0) ::close(listener_);
    listener_ = -1;
}

void FaultyProxy::accept_one() {
    const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client < 0) return;
    const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_in address = loopback_address(server_port_);
    if (::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
        errno != EINPROGRESS) {
        ::close(server);
        return reset(client);
    }
    send_at_once(client);
    send_at_once(server);
    passages_.push_back(
        std::make_unique<Passage>(client, server, new_listener_ ? new_listener_() : Listener()));
}

void FaultyProxy::serve() {
    while (!is_ending_) {
        std::vector<pollfd> waiting = {{wake_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
        auto next = Clock::time_point::max();
        for (const auto& passage : passages_) {
            waiting.push_back(Passage::waits_for(passage->up, passage->down));
            waiting.push_back(Passage::waits_for(passage->down, passage->up));
            next = std::min({next, passage->up.next(), passage->down.next()});
        }
        int patience = -1;
        if (next != Clock::time_point::max())
            patience = static_cast<int>(std::max<std::int64_t>(
                0, std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()).count()));
        ::poll(waiting.data(), waiting.size(), patience);

        const auto now = Clock::now();
        std::vector<std::unique_ptr<Passage>> kept;
        for (std::size_t i = 0; i < passages_.size(); ++i) {
            Passage& passage = *passages_[i];
            if (is_there(waiting[2 + 2 * i]))
                passage.up.receive(is_silent_ ? Passage::held : now, passage.listener);
            if (is_there(waiting[3 + 2 * i]))
                passage.down.receive(is_silent_ ? Passage::held : now + delay_, {});
            if (passage.up.send_on(now) && passage.down.send_on(now))
                kept.push_back(std::move(passages_[i]));
        }
        passages_ = std::move(kept);
        if (is_there(waiting[1])) accept_one();
        if (is_there(waiting[0])) do_what_is_told();
    }
    passages_.clear();
}

void FaultyProxy::do_what_is_told() {
    char nothing[64];
    while (::read(wake_[0], nothing, sizeof nothing) > 0) continue;
    std::vector<std::packaged_task<void()>> told;
    {
        const std::lock_guard lock(mutex_);
        told.swap(told_);
    }
    for (auto& task : told) task();
}

}  // namespace orvo
