#pragma once

// The bytes of one connection, plain or TLS. For the sources of the server alone.

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "host/web/server/proxy_greeting.h"

namespace orvo::web {

// The event thread's. Of each operation one at a time runs; what it works on has to live until it
// is done. The socket is closed at the end of this object's life and not before.
class Transport {
public:
    // How many bytes were read or written; 0: the connection is at its end, or broken.
    using Done = std::function<void(std::size_t count)>;

    virtual ~Transport() = default;

    // Before greet(), where a proxy begins with a word of its own.
    void read_proxy_greeting(std::function<void(ProxyGreeting)> done);
    // The TLS handshake; 1 or 0. Costs hardly anything until the other side says something.
    virtual void greet(Done done) = 0;
    virtual void read(std::span<char> into, Done done) = 0;
    // At least one byte.
    virtual void write(std::string_view bytes, Done done) = 0;
    // Says that nothing more comes; 1 in any case. May take as long as the other side likes.
    virtual void finish(Done done) = 0;
    // Reads what still comes after finish().
    void drain(std::span<char> into, Done done);
    // As finish(), without a word of TLS.
    void shut_down_sending();
    // Ends the connection at once: what runs is done with 0.
    void cut();

    int descriptor() { return socket_.native_handle(); }

protected:
    explicit Transport(boost::asio::ip::tcp::socket socket) : socket_(std::move(socket)) {}

    void read_socket(std::span<char> into, Done done);

    boost::asio::ip::tcp::socket socket_;
};

// tls: null for a plain connection; otherwise has to live as long.
std::unique_ptr<Transport> make_transport(boost::asio::ip::tcp::socket socket,
                                          boost::asio::ssl::context* tls);

}  // namespace orvo::web
