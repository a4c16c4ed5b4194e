#pragma once

// One connection of a browser, plain or TLS. Behind the seam of http_server.cpp.

#include <openssl/ssl.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace orvo::web {

using Deadline = std::chrono::steady_clock::time_point;

// Reads and writes bytes within a deadline; closes the socket at its end. One thread at a time.
class Connection {
public:
    // Takes the socket over. tls: null for a plain connection. Nothing is sent or read yet.
    Connection(int socket, SSL_CTX* tls);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // The TLS greeting; false where it fails.
    bool greet(Deadline deadline);
    // Whether bytes can be read at once, waiting for them up to `wait`; true as well when the other
    // side has closed.
    bool wait_for_bytes(std::chrono::milliseconds wait);
    // How many bytes were read; 0 at the end of the stream, -1 after the deadline or a failure.
    long read(char* bytes, std::size_t size, Deadline deadline);
    // False where not everything could be written.
    bool write(const char* bytes, std::size_t size, Deadline deadline);
    // Tells the other side that nothing more comes, and gives it a moment to read what came.
    void end(std::chrono::milliseconds patience);

    int socket() const { return socket_; }
    bool is_secure() const { return ssl_ != nullptr; }

private:
    bool wait(short events, Deadline deadline);
    bool wait_for_tls(int result, Deadline deadline);

    const int socket_;
    std::unique_ptr<SSL, decltype(&SSL_free)> ssl_;
    bool is_broken_ = false;
};

// A server's side of TLS with this certificate and key. Raises std::runtime_error.
std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_context(const std::string& certificate,
                                                              const std::string& key);

}  // namespace orvo::web
