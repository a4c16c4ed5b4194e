#pragma once

// What the connections of one server share. For the sources of the server alone.

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

// The event thread's, but for the pools and for posting to the loop.
struct ServerCore {
    ServerCore(ServerOptions options, HttpServer::Handler handler, ServerHooks hooks);

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
    ConnectionLimits connections;
    std::set<HttpSession*> sessions = {};
    std::size_t unsent = 0;  // bytes of answers, of all connections
    bool is_running = false;
    bool is_stopping = false;
    int port = 0;
    std::optional<boost::asio::ssl::context> tls = {};
    boost::asio::io_context loop{1};
    // Behind the loop, to which the jobs post their answers.
    WorkerPool aside{1, 1, 100};
    WorkerPool workers;
};

}  // namespace orvo::web
