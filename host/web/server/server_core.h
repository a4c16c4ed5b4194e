#pragma once

// What the connections to one listener share. For the sources of the server alone.

#include <boost/asio/io_context.hpp>
#include <boost/asio/ssl/context.hpp>
#include <optional>
#include <set>

#include "host/web/server/connection_limits.h"
#include "host/web/server/http_server.h"
#include "host/web/server/request_parser.h"
#include "host/web/server/worker_pool.h"

namespace orvo::web {

class HttpSession;

// The threads of the requests' lanes. Their jobs post the answers to the loop, which outlives them.
struct LanePools {
    explicit LanePools(const ServerOptions& options)
        : workers(options.worker_count(), options.directory_workers(), options.most_waiting) {}

    WorkerPool aside{1, 1, 100};
    WorkerPool workers;
};

// The event thread's, but for the pools and for posting to the loop. It outlives the loop, in which
// connections end that still run.
struct ServerCore {
    ServerCore(ServerOptions options, HttpServer::Handler handler, ServerHooks hooks,
               boost::asio::io_context& loop, LanePools& pools);

    void tell(const std::string& trouble) const;
    // A session has ended; the last one of a server that stops ends the loop.
    void leave(HttpSession* session);
    // Where more bytes of answers wait than may, closes the connections on which most do: who takes
    // nothing is in nobody's way.
    void limit_unsent();
    // Closes connections on which nothing is asked.
    void close_idle();
    // Closes all; whether anything was asked on one of them.
    bool close_all();

    const ServerOptions options;
    const HttpServer::Handler handler;
    const ServerHooks hooks;
    const RequestLimits limits;
    boost::asio::io_context& loop;
    LanePools& pools;
    ConnectionLimits connections;
    std::set<HttpSession*> sessions = {};
    std::size_t unsent = 0;  // bytes of answers, of all connections
    bool is_running = false;
    bool is_leaving = false;   // each answer is the last one of its connection
    bool is_stopping = false;  // nothing more is accepted
    std::optional<boost::asio::ssl::context> tls = {};
};

}  // namespace orvo::web
