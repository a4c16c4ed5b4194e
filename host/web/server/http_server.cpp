#include "host/web/server/http_server.h"

#include <netinet/tcp.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <stdexcept>

#include "host/web/server/http_session.h"
#include "host/web/server/server_core.h"
#include "host/web/server/tls_context.h"

namespace orvo::web {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

// Descriptors for all that is no connection: files, the directory, logs.
constexpr std::size_t other_descriptors = 256;
// Until the next try where none is free.
constexpr std::chrono::milliseconds accept_pause{100};

// Bytes that the system takes of an answer ahead of what it can send. Without a limit it would take
// megabytes for a browser that reads nothing.
constexpr int most_not_sent = 128 * 1024;

// Lets the process have as many descriptors as there may be connections, if the system does.
// Answers how many connections there may be.
std::size_t make_room_for(std::size_t connections) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return connections;
    const rlim_t wanted = connections + other_descriptors;
    if (limit.rlim_cur < wanted) {
        limit.rlim_cur = std::min(wanted, limit.rlim_max);
        setrlimit(RLIMIT_NOFILE, &limit);
        getrlimit(RLIMIT_NOFILE, &limit);
    }
    if (limit.rlim_cur >= wanted) return connections;
    return std::max<std::size_t>(limit.rlim_cur, 2 * other_descriptors) - other_descriptors;
}

ServerOptions with_room(ServerOptions options) {
    options.most_connections = make_room_for(options.most_connections);
    return options;
}

// IPv4 within IPv6 is IPv4.
asio::ip::address plain_address(const asio::ip::address& address) {
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        return asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
    return address;
}

Endpoints endpoints_of(const tcp::socket& socket, const tcp::endpoint& remote) {
    error_code ignored;  // who has gone already has no address
    const auto from = plain_address(remote.address());
    Endpoints endpoints{from.to_string(), remote.port(),
                        plain_address(socket.local_endpoint(ignored).address()).to_string(),
                        from.to_string()};
    if (from.is_v6()) {
        auto bytes = from.to_v6().to_bytes();
        std::fill(bytes.begin() + 8, bytes.end(), std::uint8_t{0});
        endpoints.counted_as = asio::ip::address_v6(bytes).to_string() + "/64";
    }
    return endpoints;
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

class HttpServer::Listener {
public:
    Listener(ServerOptions options, Handler handler, ServerHooks hooks)
        : core_(with_room(std::move(options)), std::move(handler), std::move(hooks)),
          acceptor_(core_.loop),
          pause_(core_.loop),
          drain_(core_.loop),
          heartbeat_(core_.loop) {
        if (!core_.options.certificate.empty())
            core_.tls.emplace(tls_context(core_.options.certificate, core_.options.key).release());
        try {
            listen();
        } catch (const boost::system::system_error& error) {
            throw std::runtime_error(
                core_.options.address + ":" + std::to_string(core_.options.port) +
                ": the address cannot be listened on: " + error.code().message());
        }
        core_.port = acceptor_.local_endpoint().port();
    }

    const ServerCore& core() const { return core_; }

    bool run() {
        accept();
        if (core_.hooks.alive) beat();
        core_.is_running = true;
        while (true) {
            try {
                core_.loop.run();
                core_.is_running = false;
                return !was_asked_;
            } catch (const std::exception& failure) {
                // Of one connection, which is gone with it: memory, mostly. The others go on.
                core_.tell(std::string("a connection was given up: ") + failure.what());
            }
        }
    }

    void stop() {
        asio::post(core_.loop, [this] {
            if (core_.is_stopping) return cut();
            core_.is_stopping = true;
            error_code ignored;
            acceptor_.close(ignored);
            pause_.cancel();
            core_.close_idle();
            if (core_.sessions.empty()) return core_.loop.stop();
            drain_.expires_after(core_.options.drain_time);
            drain_.async_wait([this](error_code error) {
                if (!error) cut();
            });
        });
    }

private:
    void listen() {
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

    void accept() {
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

    void beat() {
        core_.hooks.alive();
        heartbeat_.expires_after(core_.hooks.alive_each);
        heartbeat_.async_wait([this](error_code error) {
            if (!error) beat();
        });
    }

    void let_in(tcp::socket socket) {
        Endpoints endpoints = endpoints_of(socket, remote_);
        if (!core_.connections.try_enter(endpoints.counted_as)) {
            if (!core_.tls) say_busy(socket);
            return;
        }
        error_code ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &most_not_sent,
                   sizeof most_not_sent);
        std::make_shared<HttpSession>(
            core_, make_transport(std::move(socket), core_.tls ? &*core_.tls : nullptr),
            std::move(endpoints))
            ->begin();
    }

    void cut() {
        was_asked_ = core_.close_all();
        // Once what was closed is done with.
        asio::post(core_.loop, [this] { core_.loop.stop(); });
    }

    ServerCore core_;
    tcp::acceptor acceptor_;
    tcp::endpoint remote_;
    asio::steady_timer pause_;
    asio::steady_timer drain_;
    asio::steady_timer heartbeat_;
    bool was_asked_ = false;
};

HttpServer::HttpServer(ServerOptions options, Handler handler, ServerHooks hooks)
    : listener_(
          std::make_unique<Listener>(std::move(options), std::move(handler), std::move(hooks))) {}

HttpServer::~HttpServer() = default;

int HttpServer::port() const { return listener_->core().port; }

std::string HttpServer::url() const {
    const ServerOptions& options = listener_->core().options;
    const bool is_v6 = options.address.find(':') != std::string::npos;
    return (listener_->core().tls ? "https://" : "http://") +
           (is_v6 ? "[" + options.address + "]" : options.address) + ":" + std::to_string(port());
}

bool HttpServer::run() { return listener_->run(); }
void HttpServer::stop() { listener_->stop(); }

}  // namespace orvo::web
