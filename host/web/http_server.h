#pragma once

// HTTP/1.1 over TCP or TLS. The library and the sockets below it stay behind this header.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>

#include "host/web/http_message.h"

namespace orvo::web {

struct ServerOptions {
    std::string address = "127.0.0.1";
    int port = 0;  // 0: any that is free
    int workers = 16;
    std::filesystem::path certificate = {};  // PEM, with what leads to its issuer; makes it HTTPS
    std::filesystem::path key = {};
    std::size_t largest_head = 32 * 1024;  // request line and headers
    std::size_t most_headers = 100;
    std::size_t largest_body = 1024 * 1024;
    std::chrono::milliseconds request_time{15'000};  // for a request to arrive as a whole
    std::chrono::milliseconds answer_time{60'000};   // for the browser to take the answer
    std::chrono::milliseconds idle_time{5'000};      // of a connection between two requests
};

// Each worker serves one connection at a time; a connection that idles while others wait is closed.
class HttpServer {
public:
    // Called on the workers' threads; must not raise.
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    // Listens from now on. Raises std::runtime_error where address, port, certificate or key cannot
    // be used.
    HttpServer(ServerOptions options, Handler handler);
    ~HttpServer();

    int port() const;
    std::string url() const;  // "http://127.0.0.1:8080"

    // Serves until stop() is called from any thread; returns when the last request is answered.
    void run();
    void stop();

private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

}  // namespace orvo::web
