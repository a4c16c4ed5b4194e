#include "host/web/server/http_server.h"

#include <sys/resource.h>

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include "host/web/server/listener.h"
#include "host/web/server/server_core.h"

namespace orvo::web {
namespace {

namespace asio = boost::asio;
using boost::system::error_code;

// Descriptors for all that is no connection: files, the directory, logs.
constexpr std::size_t other_descriptors = 256;
constexpr std::size_t most_administrators = 50;

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

// Few ask, and they send nothing but their questions.
ServerOptions options_of(const Administration& administration) {
    ServerOptions options;
    options.address = administration.address.ip.text();
    options.port = administration.address.port;
    options.workers = 1;
    options.most_waiting = options.most_connections = options.most_of_one_address =
        most_administrators;
    options.largest_body = options.largest_upload = 0;
    return options;
}

}  // namespace

class HttpServer::Loop {
public:
    Loop(ServerOptions options, Handler handler, ServerHooks hooks,
         std::optional<Administration> administration)
        : core_(with_room(std::move(options)), std::move(handler), std::move(hooks), loop_, pools_),
          pools_(core_.options),
          listener_(core_),
          drain_(loop_),
          heartbeat_(loop_) {
        if (!administration) return;
        const ServerOptions its_options = options_of(*administration);
        administration_pools_.emplace(its_options);
        administration_core_.emplace(
            its_options, std::move(administration->handler),
            ServerHooks{.lane = std::move(administration->lane), .trouble = core_.hooks.trouble},
            loop_, *administration_pools_);
        administration_.emplace(*administration_core_);
    }

    const ServerCore& core() const { return core_; }
    const Listener& listener() const { return listener_; }
    const Listener* administration() const { return administration_ ? &*administration_ : nullptr; }

    bool run() {
        listener_.accept();
        if (administration_) administration_->accept();
        if (core_.hooks.alive) beat();
        core_.is_running = true;
        while (true) {
            try {
                loop_.run();
                core_.is_running = false;
                return !was_asked_;
            } catch (const std::exception& failure) {
                // Of one connection, which is gone with it: memory, mostly. The others go on.
                core_.tell(std::string("a connection was given up: ") + failure.what());
            }
        }
    }

    void stop() {
        asio::post(loop_, [this] {
            if (std::exchange(core_.is_leaving, true)) return cut();
            if (core_.options.drain_delay.count() == 0) return stop_listening();
            after(core_.options.drain_delay, [this] { stop_listening(); });
        });
    }

private:
    void stop_listening() {
        core_.is_stopping = true;
        listener_.close();
        core_.close_idle();
        if (core_.sessions.empty()) return loop_.stop();
        after(core_.options.drain_time, [this] { cut(); });
    }

    void after(std::chrono::milliseconds time, std::function<void()> step) {
        drain_.expires_after(time);
        drain_.async_wait([step = std::move(step)](error_code error) {
            if (!error) step();
        });
    }

    void beat() {
        core_.hooks.alive();
        heartbeat_.expires_after(core_.hooks.alive_each);
        heartbeat_.async_wait([this](error_code error) {
            if (!error) beat();
        });
    }

    void cut() {
        was_asked_ = core_.close_all();
        // Once what was closed is done with.
        asio::post(loop_, [this] { loop_.stop(); });
    }

    // Connections that still run end with the loop, and then need their core; threads post to the
    // loop until they end. So the loop stands between the two.
    ServerCore core_;
    std::optional<ServerCore> administration_core_;
    asio::io_context loop_{1};
    LanePools pools_;
    std::optional<LanePools> administration_pools_;
    Listener listener_;
    std::optional<Listener> administration_;
    asio::steady_timer drain_;
    asio::steady_timer heartbeat_;
    bool was_asked_ = false;
};

HttpServer::HttpServer(ServerOptions options, Handler handler, ServerHooks hooks,
                       std::optional<Administration> administration)
    : loop_(std::make_unique<Loop>(std::move(options), std::move(handler), std::move(hooks),
                                   std::move(administration))) {}

HttpServer::~HttpServer() = default;

int HttpServer::port() const { return loop_->listener().port(); }
std::string HttpServer::url() const { return loop_->listener().url(); }

int HttpServer::administration_port() const {
    const Listener* listener = loop_->administration();
    return listener ? listener->port() : 0;
}
std::string HttpServer::administration_url() const {
    const Listener* listener = loop_->administration();
    return listener ? listener->url() : "";
}

bool HttpServer::run() { return loop_->run(); }
void HttpServer::stop() { loop_->stop(); }

ServerCounts HttpServer::counts() const {
    const ServerCore& core = loop_->core();
    return {core.connections.count(), core.connections.refused_in_all(),
            core.connections.refused_of_one_address(), core.pools.workers.counts()};
}

}  // namespace orvo::web
