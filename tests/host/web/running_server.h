#pragma once

#include <thread>

#include "host/web/server/http_server.h"

namespace orvo::web {

// A server on a free port of the loopback address, on a thread of its own, as long as this lives.
class RunningServer {
public:
    RunningServer(ServerOptions options, HttpServer::Handler handler, ServerHooks hooks = {},
                  std::optional<Administration> administration = {})
        : server_(std::move(options), std::move(handler), std::move(hooks),
                  std::move(administration)),
          thread_([this] { was_all_answered_ = server_.run(); }) {}
    ~RunningServer() {
        server_.stop();
        if (thread_.joinable()) thread_.join();
    }

    void stop() { server_.stop(); }
    // What run() returned. Waits for that.
    bool was_all_answered() {
        thread_.join();
        return was_all_answered_;
    }

    ServerCounts counts() const { return server_.counts(); }
    int port() const { return server_.port(); }
    int administration_port() const { return server_.administration_port(); }
    std::string url() const { return server_.url(); }

private:
    HttpServer server_;
    bool was_all_answered_ = false;
    std::thread thread_;
};

}  // namespace orvo::web
