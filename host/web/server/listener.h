#pragma once

// Where connections come in. For the sources of the server alone.

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <string>

namespace orvo::web {

struct ServerCore;

// Listens on an address, and begins a session for each connection that may come in. The event
// thread's; `core` has to live as long.
class Listener {
public:
    // core.options says where, and by which certificate. Raises std::runtime_error where address,
    // port, certificate or key cannot be used.
    explicit Listener(ServerCore& core);

    // Lets connections in from now on.
    void accept();
    // Nothing more is accepted.
    void close();

    int port() const { return port_; }
    std::string url() const;  // "http://127.0.0.1:8080"

private:
    void listen();
    void let_in(boost::asio::ip::tcp::socket socket);

    ServerCore& core_;
    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::ip::tcp::endpoint remote_;
    boost::asio::steady_timer pause_;
    int port_ = 0;
};

}  // namespace orvo::web
