#include "host/web/server/listener.h"

#include <netinet/tcp.h>

#include <boost/asio/ip/v6_only.hpp>
#include <stdexcept>

#include "host/web/server/http_session.h"
#include "host/web/server/server_core.h"
#include "host/web/server/tls_context.h"

namespace orvo::web {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

// Until the next try where no descriptor is free.
constexpr std::chrono::milliseconds accept_pause{100};

// Bytes that the system takes of an answer ahead of what it can send. Without a limit it would take
// megabytes for a browser that reads nothing.
constexpr int most_not_sent = 128 * 1024;

IpAddress ip_address(const asio::ip::address& address) {
    if (address.is_v4()) return IpAddress::of_v4(address.to_v4().to_bytes());
    return IpAddress::of_v6(address.to_v6().to_bytes());
}

// Never waits: what the system does not take at once is not sent.
void say_busy(tcp::socket& socket) {
    static constexpr std::string_view answer =
        "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nRetry-After: 10\r\n"
        "Content-Length: 0\r\n\r\n";
    error_code ignored;
    socket.non_blocking(true, ignored);
    socket.write_some(asio::buffer(answer.data(), answer.size()), ignored);
    socket.shutdown(tcp::socket::shutdown_send, ignored);
}

}  // namespace

Listener::Listener(ServerCore& core) : core_(core), acceptor_(core.loop), pause_(core.loop) {
    if (!core_.options.certificate.empty())
        core_.tls.emplace(tls_context(core_.options.certificate, core_.options.key).release());
    try {
        listen();
    } catch (const boost::system::system_error& error) {
        throw std::runtime_error(core_.options.address + ":" + std::to_string(core_.options.port) +
                                 ": the address cannot be listened on: " + error.code().message());
    }
    port_ = acceptor_.local_endpoint().port();
}

std::string Listener::url() const {
    const std::string& address = core_.options.address;
    const bool is_v6 = address.find(':') != std::string::npos;
    return (core_.tls ? "https://" : "http://") + (is_v6 ? "[" + address + "]" : address) + ":" +
           std::to_string(port_);
}

void Listener::listen() {
    tcp::resolver resolver(core_.loop);
    const tcp::endpoint endpoint =
        *resolver
             .resolve(core_.options.address, std::to_string(core_.options.port),
                      tcp::resolver::passive | tcp::resolver::numeric_service)
             .begin();
    acceptor_.open(endpoint.protocol());
    acceptor_.set_option(tcp::acceptor::reuse_address(true));
    if (endpoint.protocol() == tcp::v6()) acceptor_.set_option(asio::ip::v6_only(false));
    acceptor_.bind(endpoint);
    acceptor_.listen(tcp::acceptor::max_listen_connections);
}

void Listener::accept() {
    if (!acceptor_.is_open()) return;
    acceptor_.async_accept(remote_, [this](error_code error, tcp::socket socket) {
        if (error == asio::error::operation_aborted) return;
        if (!error) {
            let_in(std::move(socket));
            accept();
        } else {
            // Somebody has gone again, or there is no descriptor: others will end.
            pause_.expires_after(accept_pause);
            pause_.async_wait([this](error_code failure) {
                if (!failure) accept();
            });
        }
    });
}

void Listener::close() {
    error_code ignored;
    acceptor_.close(ignored);
    pause_.cancel();
}

void Listener::let_in(tcp::socket socket) {
    error_code ignored;  // who has gone already has no address
    const Endpoints endpoints{ip_address(remote_.address()), remote_.port(),
                              ip_address(socket.local_endpoint(ignored).address()), port_,
                              core_.tls.has_value()};
    auto client = ConnectionClient::try_enter(endpoints, core_.options.proxies, core_.connections);
    if (!client) {
        if (!core_.tls) say_busy(socket);
        return;
    }
    socket.set_option(tcp::no_delay(true), ignored);
    setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &most_not_sent,
               sizeof most_not_sent);
    std::make_shared<HttpSession>(
        core_, make_transport(std::move(socket), core_.tls ? &*core_.tls : nullptr),
        std::move(*client))
        ->begin();
}

}  // namespace orvo::web
