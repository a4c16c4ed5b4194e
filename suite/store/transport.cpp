#include "suite/store/transport.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/network/resolver.h"
#include "suite/store/lost.h"

namespace orvo::store {
namespace {

using std::chrono::milliseconds;

std::string system_reason(int error) { return std::generic_category().message(error); }

[[noreturn]] void raise_silent() { throw Lost("it does not answer", Lost::Why::silent); }

// 0, or an errno: ETIMEDOUT after the deadline.
int connect_within(int socket, const addrinfo& address, const Deadline& deadline) {
    if (::connect(socket, address.ai_addr, address.ai_addrlen) == 0) return 0;
    if (errno != EINPROGRESS) return errno;
    pollfd waiting{socket, POLLOUT, 0};
    int ready;
    do {
        ready = ::poll(&waiting, 1, static_cast<int>(deadline.left().count()));
    } while (ready < 0 && errno == EINTR);
    if (ready < 0) return errno;
    if (ready == 0) return ETIMEDOUT;
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

}  // namespace

Transport::Transport(const Address& address, const TlsContext& tls, const Deadline& deadline)
    : Transport() {
    connect_to(address, deadline);
    const auto set = [this](int level, int option, int value) {
        ::setsockopt(socket_, level, option, &value, sizeof value);
    };
    set(IPPROTO_TCP, TCP_NODELAY, 1);
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPIDLE, 30);
    if (!tls) return;
    tls_.emplace(tls, address.host);
    shake_hands(deadline);
}

Transport::~Transport() {
    if (socket_ >= 0) ::close(socket_);
}

void Transport::connect_to(const Address& address, const Deadline& deadline) {
    const FoundAddresses found = find_addresses(address.host, address.port, deadline);
    if (found.error == EAI_INPROGRESS) throw Lost("its address was not found", Lost::Why::silent);
    if (found.error != 0) throw Lost(gai_strerror(found.error));
    int reason = 0;
    int left = 0;
    for (const addrinfo* one = found.list.get(); one; one = one->ai_next) ++left;
    for (const addrinfo* one = found.list.get(); one; one = one->ai_next, --left) {
        socket_ = ::socket(one->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        if (socket_ < 0) {
            reason = errno;
            continue;
        }
        reason = connect_within(socket_, *one, Deadline(deadline.left() / left));
        if (reason == 0) return;
        ::close(std::exchange(socket_, -1));
    }
    if (reason == ETIMEDOUT) raise_silent();
    throw Lost(system_reason(reason));
}

void Transport::shake_hands(const Deadline& deadline) {
    std::array<char, 16384> bytes;
    for (;;) {
        const bool is_done = tls_->shake_hands();
        send_plain(tls_->take_outgoing(), deadline);
        if (is_done) return;
        const std::size_t count = receive_plain(bytes, deadline);
        tls_->put_incoming({bytes.data(), count});
    }
}

void Transport::send(std::string_view bytes, const Deadline& deadline) {
    if (!tls_) return send_plain(bytes, deadline);
    tls_->write(bytes);
    send_plain(tls_->take_outgoing(), deadline);
}

std::size_t Transport::receive(std::span<char> bytes, const Deadline& deadline) {
    if (!tls_) return receive_plain(bytes, deadline);
    for (;;) {
        if (const std::size_t count = tls_->read(bytes); count > 0) return count;
        // A key update asks for an answer.
        send_plain(tls_->take_outgoing(), deadline);
        std::array<char, 16384> encrypted;
        const std::size_t count = receive_plain(encrypted, deadline);
        tls_->put_incoming({encrypted.data(), count});
    }
}

void Transport::send_plain(std::string_view bytes, const Deadline& deadline) {
    bool is_sent = false;
    try {
        while (!bytes.empty()) {
            const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent >= 0) {
                is_sent = true;
                bytes.remove_prefix(static_cast<std::size_t>(sent));
            } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
                await(POLLOUT, deadline);
            } else if (errno != EINTR) {
                throw Lost(system_reason(errno));
            }
        }
    } catch (Lost& lost) {
        lost.is_sent = is_sent;
        throw;
    }
}

std::size_t Transport::receive_plain(std::span<char> bytes, const Deadline& deadline) {
    for (;;) {
        await(POLLIN, deadline);
        const ssize_t count = ::recv(socket_, bytes.data(), bytes.size(), 0);
        if (count > 0) return static_cast<std::size_t>(count);
        if (count == 0) throw Lost("it has closed the connection");
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
            throw Lost(system_reason(errno));
    }
}

void Transport::await(short events, const Deadline& deadline) const {
    pollfd waiting{socket_, events, 0};
    for (;;) {
        const int ready = ::poll(&waiting, 1, static_cast<int>(deadline.left().count()));
        if (ready > 0) return;
        if (ready == 0) raise_silent();
        if (errno != EINTR) throw Lost(system_reason(errno));
    }
}

bool Transport::is_quiet() const {
    pollfd looking{socket_, POLLIN, 0};
    return ::poll(&looking, 1, 0) == 0;
}

void Transport::interrupt() { ::shutdown(socket_, SHUT_RDWR); }

}  // namespace orvo::store
