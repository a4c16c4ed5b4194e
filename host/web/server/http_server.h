#pragma once

// HTTP/1.1 over TCP or TLS. The libraries and the sockets below it stay behind this header.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "host/web/messages/forwarded.h"
#include "host/web/messages/http_message.h"
#include "host/web/server/worker_pool.h"

namespace orvo::web {

struct ServerOptions {
    std::string address = "127.0.0.1";
    int port = 0;              // 0: any that is free
    int workers = 0;           // 0: four for each processor, eight at least
    int directory_share = 75;  // percent of the workers, at least one: Lane::directory
    int worker_count() const;
    int directory_workers() const;
    std::size_t most_waiting = 1000;  // requests for a worker, of either kind; more are refused
    std::filesystem::path certificate = {};  // PEM, with what leads to its issuer; makes it HTTPS
    std::filesystem::path key = {};
    TrustedProxies proxies = {};  // in front of it
    // Under HTTPS: how long browsers are to come back by HTTPS alone; 0: they are not told.
    std::chrono::seconds strict_transport{std::chrono::hours(30 * 24)};
    std::size_t largest_head = 32 * 1024;  // request line and headers
    std::size_t most_headers = 100;
    std::size_t largest_body = 1024 * 1024;
    std::size_t largest_upload = 1024 * 1024;  // of forms that may have files (multipart)
    std::size_t most_connections = 10'000;     // also as many as the system lets the process have
    // Connections of one client; of IPv6 a /64 counts as one. That of a trusted proxy counts for
    // the client of the request that is answered, or of the proxy's header.
    std::size_t most_of_one_address = 2'000;
    // Bytes of answers that wait for their browsers; beyond it the largest of them is given up.
    std::size_t most_unsent = 256 * 1024 * 1024;
    std::chrono::milliseconds greeting_time{
        10'000};                                     // for the proxy's header and the TLS handshake
    std::chrono::milliseconds request_time{15'000};  // for a request to arrive, and see below
    std::chrono::milliseconds answer_time{60'000};   // for the browser to take the answer, too
    std::chrono::milliseconds idle_time{5'000};      // of a connection between two requests
    // When the server is stopped: how long it goes on as before, but that each answer is the last
    // one of its connection; and then how long what runs may take.
    std::chrono::milliseconds drain_delay{0};
    std::chrono::milliseconds drain_time{10'000};
    // Bodies and answers that are large have a second more for each so many bytes that went
    // through.
    std::size_t least_rate = 16 * 1024;
};

// What the server tells its owner, all on the event thread.
struct ServerHooks {
    // Which way a request is answered; must neither wait nor raise.
    std::function<Lane(const HttpRequest&)> lane = {};
    // A request that no handler has seen is refused: the answer may still be changed. What is not
    // known of the request is "-".
    std::function<void(const HttpRequest&, HttpResponse&, std::chrono::steady_clock::duration)>
        refused = {};
    // A sentence for the log, once in a while: connections that were refused, what went wrong.
    std::function<void(const std::string&)> trouble = {};
    // Called again and again, as long as the event thread gets round to it.
    std::function<void()> alive = {};
    std::chrono::milliseconds alive_each{0};
};

// How busy a server is, and what it has refused since it began.
struct ServerCounts {
    std::size_t connections;
    std::uint64_t refused_in_all;          // connections: there were too many
    std::uint64_t refused_of_one_address;  // connections: there were too many of one address
    WorkerPool::Counts workers;
};

// A second, small listener on the same thread, for those who run the server: plain HTTP, up to
// fifty connections, questions without a body. It has a worker and a thread aside of its own, and
// goes on until run() ends.
struct Administration {
    SocketAddress address = {};                                    // port 0: any that is free
    std::function<HttpResponse(const HttpRequest&)> handler = {};  // must not raise
    std::function<Lane(const HttpRequest&)> lane = {};             // as in ServerHooks
};

// One thread reads and writes for all connections; a handler is given a request when all of it is
// there, and its answer goes out however slowly the browser takes it. So slow clients cost memory,
// which is limited, but no worker.
class HttpServer {
public:
    // Called on the threads of the requests' lanes; must not raise.
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    // Listens from now on. Raises std::runtime_error where address, port, certificate or key cannot
    // be used.
    HttpServer(ServerOptions options, Handler handler, ServerHooks hooks = {},
               std::optional<Administration> administration = {});
    // Waits for handlers that still run.
    ~HttpServer();

    int port() const;
    std::string url() const;  // "http://127.0.0.1:8080"
    // 0 and empty without one.
    int administration_port() const;
    std::string administration_url() const;

    // Serves until stop() is called. Returns whether all that was asked was answered. If not, after
    // the time for that or a second stop(), handlers may still run.
    bool run();
    // From any thread. After drain_delay closes what listens and what is idle; what runs has
    // drain_time to end. Called again, every connection is closed at once.
    void stop();
    // From any thread.
    ServerCounts counts() const;

private:
    class Loop;
    std::unique_ptr<Loop> loop_;
};

}  // namespace orvo::web
