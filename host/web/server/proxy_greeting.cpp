#include "host/web/server/proxy_greeting.h"

#include <array>
#include <boost/asio/buffer.hpp>
#include <memory>
#include <stdexcept>

namespace orvo::web {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

class Reading : public std::enable_shared_from_this<Reading> {
public:
    Reading(tcp::socket& socket, std::function<void(ProxyGreeting)> done)
        : socket_(socket), done_(std::move(done)) {}

    void wait() {
        socket_.async_wait(tcp::socket::wait_read, [self = shared_from_this()](error_code error) {
            if (error) return self->done_({});
            self->read();
        });
    }

private:
    // Looks at what has come before it takes it, as part of it may be somebody else's.
    void read() {
        std::array<char, 512> bytes;
        error_code error;
        socket_.non_blocking(true, error);
        const std::size_t count =
            socket_.receive(asio::buffer(bytes), tcp::socket::message_peek, error);
        if (error == asio::error::would_block) return wait();
        if (error || count == 0) return done_({});
        try {
            const std::size_t taken = reader_.take({bytes.data(), count});
            socket_.receive(asio::buffer(bytes.data(), taken), 0, error);
        } catch (const std::runtime_error& failure) {
            return done_({.trouble = failure.what()});
        }
        if (error) return done_({});
        if (!reader_.is_complete()) return wait();
        done_({.header = reader_.header()});
    }

    tcp::socket& socket_;
    const std::function<void(ProxyGreeting)> done_;
    ProxyHeaderReader reader_;
};

}  // namespace

void read_proxy_greeting(tcp::socket& socket, std::function<void(ProxyGreeting)> done) {
    std::make_shared<Reading>(socket, std::move(done))->wait();
}

}  // namespace orvo::web
