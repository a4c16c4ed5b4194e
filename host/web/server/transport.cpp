#include "host/web/server/transport.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <optional>
#include <utility>

namespace orvo::web {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

// What the library calls when an operation of bytes has ended.
auto counted(Transport::Done done) {
    return
        [done = std::move(done)](error_code error, std::size_t count) { done(error ? 0 : count); };
}

auto buffer(std::span<char> into) { return asio::buffer(into.data(), into.size()); }
auto buffer(std::string_view bytes) { return asio::buffer(bytes.data(), bytes.size()); }

class PlainTransport : public Transport {
public:
    explicit PlainTransport(tcp::socket socket) : Transport(std::move(socket)) {}

    void greet(Done done) override {
        asio::post(socket_.get_executor(), [done = std::move(done)] { done(1); });
    }
    void read(std::span<char> into, Done done) override { read_socket(into, std::move(done)); }
    void write(std::string_view bytes, Done done) override {
        socket_.async_write_some(buffer(bytes), counted(std::move(done)));
    }
    void finish(Done done) override {
        shut_down_sending();
        greet(std::move(done));
    }
};

class TlsTransport : public Transport {
public:
    TlsTransport(tcp::socket socket, asio::ssl::context& context)
        : Transport(std::move(socket)), context_(context) {}

    void greet(Done done) override {
        socket_.async_wait(
            tcp::socket::wait_read, [this, done = std::move(done)](error_code error) mutable {
                if (error) return done(0);
                stream_.emplace(socket_, context_);
                stream_->async_handshake(
                    asio::ssl::stream_base::server,
                    [done = std::move(done)](error_code failure) { done(failure ? 0 : 1); });
            });
    }
    void read(std::span<char> into, Done done) override {
        stream_->async_read_some(buffer(into), counted(std::move(done)));
    }
    void write(std::string_view bytes, Done done) override {
        stream_->async_write_some(buffer(bytes), counted(std::move(done)));
    }
    void finish(Done done) override {
        stream_->async_shutdown([this, done = std::move(done)](error_code) {
            shut_down_sending();
            done(1);
        });
    }

private:
    asio::ssl::context& context_;
    std::optional<asio::ssl::stream<tcp::socket&>> stream_;
};

}  // namespace

void Transport::read_proxy_greeting(std::function<void(ProxyGreeting)> done) {
    web::read_proxy_greeting(socket_, std::move(done));
}

void Transport::drain(std::span<char> into, Done done) { read_socket(into, std::move(done)); }

void Transport::read_socket(std::span<char> into, Done done) {
    socket_.async_read_some(buffer(into), counted(std::move(done)));
}

void Transport::shut_down_sending() {
    error_code ignored;  // the other side may be gone
    socket_.shutdown(tcp::socket::shutdown_send, ignored);
}

void Transport::cut() {
    error_code ignored;
    socket_.shutdown(tcp::socket::shutdown_both, ignored);
    socket_.cancel(ignored);
}

std::unique_ptr<Transport> make_transport(tcp::socket socket, asio::ssl::context* tls) {
    if (tls) return std::make_unique<TlsTransport>(std::move(socket), *tls);
    return std::make_unique<PlainTransport>(std::move(socket));
}

}  // namespace orvo::web
