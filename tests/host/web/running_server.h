#pragma once

#include <thread>

#include "host/web/http_server.h"

namespace orvo::web {

// A server on a free port of the loopback address, on a thread of its own, as long as this lives.
class RunningServer {
public:
    RunningServer(ServerOptions options, HttpServer::Handler handler)
        : server_(std::move(options), std::move(handler)), thread_([this] { server_.run(); }) {}
    ~RunningServer() {
        server_.stop();
        thread_.join();
    }

    int port() const { return server_.port(); }
    std::string url() const { return server_.url(); }

private:
    HttpServer server_;
    std::thread thread_;
};

}  // namespace orvo::web
