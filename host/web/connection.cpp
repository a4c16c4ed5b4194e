#include "host/web/connection.h"

#include <fcntl.h>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>

namespace orvo::web {
namespace {

int milliseconds_until(Deadline deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000));
}

std::string tls_reason() {
    std::array<char, 256> text{};
    ERR_error_string_n(ERR_get_error(), text.data(), text.size());
    return text.data();
}

}  // namespace

Connection::Connection(int socket, SSL_CTX* tls)
    : socket_(socket), ssl_(tls ? SSL_new(tls) : nullptr, SSL_free) {
    fcntl(socket_, F_SETFL, fcntl(socket_, F_GETFL) | O_NONBLOCK);
    if (ssl_) SSL_set_fd(ssl_.get(), socket_);
}

Connection::~Connection() {
    ssl_.reset();
    close(socket_);
}

bool Connection::wait(short events, Deadline deadline) {
    pollfd watched{socket_, events, 0};
    while (true) {
        const int ready = poll(&watched, 1, milliseconds_until(deadline));
        if (ready > 0) return true;
        if (ready == 0 || errno != EINTR) return false;
    }
}

bool Connection::wait_for_tls(int result, Deadline deadline) {
    switch (SSL_get_error(ssl_.get(), result)) {
        case SSL_ERROR_WANT_READ:
            return wait(POLLIN, deadline);
        case SSL_ERROR_WANT_WRITE:
            return wait(POLLOUT, deadline);
        default:
            is_broken_ = true;
            return false;
    }
}

bool Connection::greet(Deadline deadline) {
    if (!ssl_) return true;
    while (true) {
        ERR_clear_error();
        const int result = SSL_accept(ssl_.get());
        if (result == 1) return true;
        if (!wait_for_tls(result, deadline)) return false;
    }
}

bool Connection::wait_for_bytes(std::chrono::milliseconds patience) {
    if (ssl_ && SSL_pending(ssl_.get()) > 0) return true;
    return wait(POLLIN, std::chrono::steady_clock::now() + patience);
}

long Connection::read(char* bytes, std::size_t size, Deadline deadline) {
    while (true) {
        if (ssl_) {
            ERR_clear_error();
            const int count = SSL_read(ssl_.get(), bytes, static_cast<int>(size));
            if (count > 0) return count;
            if (SSL_get_error(ssl_.get(), count) == SSL_ERROR_ZERO_RETURN) return 0;
            if (!wait_for_tls(count, deadline)) return -1;
        } else {
            const ssize_t count = recv(socket_, bytes, size, 0);
            if (count >= 0) return count;
            if (errno == EINTR) continue;
            if ((errno != EAGAIN && errno != EWOULDBLOCK) || !wait(POLLIN, deadline)) return -1;
        }
    }
}

bool Connection::write(const char* bytes, std::size_t size, Deadline deadline) {
    while (size > 0) {
        std::size_t written = 0;
        if (ssl_) {
            ERR_clear_error();
            const int count = SSL_write(ssl_.get(), bytes,
                                        static_cast<int>(std::min(size, std::size_t{1} << 20)));
            if (count <= 0) {
                if (!wait_for_tls(count, deadline)) return false;
                continue;
            }
            written = static_cast<std::size_t>(count);
        } else {
            const ssize_t count = send(socket_, bytes, size, MSG_NOSIGNAL);
            if (count < 0) {
                if (errno == EINTR) continue;
                if ((errno != EAGAIN && errno != EWOULDBLOCK) || !wait(POLLOUT, deadline))
                    return false;
                continue;
            }
            written = static_cast<std::size_t>(count);
        }
        bytes += written;
        size -= written;
    }
    return true;
}

void Connection::end(std::chrono::milliseconds patience) {
    if (ssl_ && !is_broken_) SSL_shutdown(ssl_.get());
    shutdown(socket_, SHUT_WR);
    // What the other side still sends is read: closing on unread bytes would take back the answer.
    const Deadline deadline = std::chrono::steady_clock::now() + patience;
    std::array<char, 4096> rest;
    std::size_t total = 0;
    while (total < 4 * 1024 * 1024 && wait(POLLIN, deadline)) {
        const ssize_t count = recv(socket_, rest.data(), rest.size(), 0);
        if (count <= 0) return;
        total += static_cast<std::size_t>(count);
    }
}

std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_context(const std::string& certificate,
                                                              const std::string& key) {
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_server_method()),
                                                              SSL_CTX_free);
    if (!context) throw std::runtime_error("TLS: " + tls_reason());
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_options(context.get(), SSL_OP_NO_RENEGOTIATION | SSL_OP_CIPHER_SERVER_PREFERENCE);
    SSL_CTX_set_mode(context.get(),
                     SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    static constexpr unsigned char name[] = "orvo-web";
    SSL_CTX_set_session_id_context(context.get(), name, sizeof name - 1);
    if (SSL_CTX_use_certificate_chain_file(context.get(), certificate.c_str()) != 1)
        throw std::runtime_error(certificate + ": no certificate can be read: " + tls_reason());
    if (SSL_CTX_use_PrivateKey_file(context.get(), key.c_str(), SSL_FILETYPE_PEM) != 1)
        throw std::runtime_error(key + ": no private key can be read: " + tls_reason());
    if (SSL_CTX_check_private_key(context.get()) != 1)
        throw std::runtime_error(key + ": the key is not the certificate's");
    return context;
}

}  // namespace orvo::web
