#include "host/web/http_server.h"

#include <httplib.h>

#include <optional>
#include <stdexcept>

#include "host/web/connection.h"
#include "host/web/error_page.h"
#include "host/web/request_head.h"
#include "host/web/worker_pool.h"

namespace orvo::web {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr int most_requests = 1000;  // of one connection
constexpr std::size_t most_waiting = 1000;
constexpr int backlog = 512;
// How long a silent connection is waited for while others wait for a worker.
constexpr milliseconds first_patience{300};
constexpr milliseconds next_patience{100};
constexpr milliseconds end_patience{500};

void name_peer(const sockaddr_storage& address, std::string& ip, int& port) {
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    if (getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, host.data(),
                    host.size(), service.data(), service.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        return;
    ip = host.data();
    port = std::atoi(service.data());
}

// A connection as the library sees it while one request is served. What the browser says is read
// here, as it was sent; the library, which refuses addresses with two "?" and decodes what nobody
// encoded, is told no more than it needs to write the answer.
class RequestStream : public httplib::Stream {
public:
    RequestStream(Connection& connection, const ServerOptions& options)
        : connection_(connection), options_(options) {}

    bool has_buffered() const { return next_ < buffer_.size(); }

    // Reads a request up to its empty line; false where the browser says nothing, or too slowly.
    // A head that grows too large is cut.
    bool read_head(std::string& head) {
        read_until_ = Clock::now() + options_.request_time;
        head.clear();
        while (head.size() < options_.largest_head) {
            if (!has_buffered() && !fill()) return false;
            const char byte = buffer_[next_++];
            // Browsers may send an empty line in front.
            if (head.empty() && (byte == '\r' || byte == '\n')) continue;
            head += byte;
            if (byte == '\n' && (head.ends_with("\n\r\n") || head.ends_with("\n\n"))) break;
        }
        return true;
    }

    // False where the body does not come as a whole and in time.
    bool read_body(std::size_t length, std::string& body) {
        body.resize(length);
        std::size_t done = 0;
        while (done < length) {
            if (!has_buffered() && !fill()) return false;
            const auto count = std::min(length - done, buffer_.size() - next_);
            buffer_.copy(body.data() + done, count, next_);
            next_ += count;
            done += count;
        }
        return true;
    }

    // What the library is to read.
    void tell(std::string head) { told_ = std::move(head); }

    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    ssize_t read(char* bytes, size_t size) override {
        const auto count = std::min(size, told_.size());
        if (count == 0) return -1;
        told_.copy(bytes, count);
        told_.erase(0, count);
        return static_cast<ssize_t>(count);
    }
    ssize_t write(const char* bytes, size_t size) override {
        const bool is_written = connection_.write(bytes, size, Clock::now() + options_.answer_time);
        return is_written ? static_cast<ssize_t>(size) : -1;
    }
    void get_remote_ip_and_port(std::string& ip, int& port) const override {
        sockaddr_storage address{};
        socklen_t size = sizeof address;
        if (getpeername(socket(), reinterpret_cast<sockaddr*>(&address), &size) == 0)
            name_peer(address, ip, port);
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override {
        sockaddr_storage address{};
        socklen_t size = sizeof address;
        if (getsockname(socket(), reinterpret_cast<sockaddr*>(&address), &size) == 0)
            name_peer(address, ip, port);
    }
    socket_t socket() const override { return connection_.socket(); }

private:
    bool fill() {
        buffer_.resize(4096);
        next_ = 0;
        const long count = connection_.read(buffer_.data(), buffer_.size(), read_until_);
        buffer_.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return count > 0;
    }

    Connection& connection_;
    const ServerOptions& options_;
    std::string told_;
    std::string buffer_;
    std::size_t next_ = 0;
    Clock::time_point read_until_;
};

// A request that comes from nobody and whose answer nobody reads.
class NobodysStream : public httplib::Stream {
public:
    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    ssize_t read(char* bytes, size_t size) override {
        const auto count = request_.copy(bytes, size);
        request_.remove_prefix(count);
        return count > 0 ? static_cast<ssize_t>(count) : -1;
    }
    ssize_t write(const char*, size_t size) override { return static_cast<ssize_t>(size); }
    void get_remote_ip_and_port(std::string&, int&) const override {}
    void get_local_ip_and_port(std::string&, int&) const override {}
    socket_t socket() const override { return -1; }

private:
    std::string_view request_ = "GET / HTTP/1.1\r\n\r\n";
};

// What a request came to before it is answered.
struct Received {
    HttpRequest request;
    std::optional<Refusal> refusal;
    bool is_last = false;  // of its connection
};

bool asks_to_close(const HttpRequest& request) {
    const std::string_view connection = request.header("Connection");
    if (request.version == "HTTP/1.0") return !equal_ascii_ignoring_case(connection, "keep-alive");
    return equal_ascii_ignoring_case(connection, "close");
}

// The request that the calling thread answers.
thread_local Received* answered = nullptr;

}  // namespace

class HttpServer::Listener : public httplib::Server {
public:
    Listener(ServerOptions options, HttpServer::Handler handler)
        : options_(std::move(options)), handler_(std::move(handler)), tls_(nullptr, SSL_CTX_free) {
        if (!options_.certificate.empty())
            tls_ = tls_context(options_.certificate.string(), options_.key.string());
        new_task_queue = [this] { return pool_ = new WorkerPool(options_.workers); };
        make_tables();
        set_pre_routing_handler([this](const httplib::Request&, httplib::Response& answer) {
            put(answer_to(*answered), answer);
            // Who is told does not send another request that nobody would read.
            if (is_stopping_ || pool_->waiting() > 0) answered->is_last = true;
            if (answered->is_last) answer.set_header("Connection", "close");
            return HandlerResponse::Handled;
        });
        set_tcp_nodelay(true);
        set_keep_alive_max_count(most_requests);
        port_ = options_.port == 0
                    ? bind_to_any_port(options_.address)
                    : (bind_to_port(options_.address, options_.port) ? options_.port : -1);
        if (port_ <= 0)
            throw std::runtime_error(options_.address + ":" + std::to_string(options_.port) +
                                     ": the address cannot be listened on");
        // The library's own queue for connections is too short for many browsers at once.
        ::listen(svr_sock_, backlog);
    }

    int port() const { return port_; }
    const std::string& address() const { return options_.address; }
    bool is_secure() const { return tls_ != nullptr; }

    void serve() {
        is_serving_ = true;
        if (!is_stopping_) listen_after_bind();
        has_ended_ = true;
    }
    void stop_serving() {
        is_stopping_ = true;
        // A server that is just about to listen takes the word when it does.
        while (is_serving_ && !has_ended_ && !is_running())
            std::this_thread::sleep_for(milliseconds(1));
        if (is_running()) httplib::Server::stop();
    }

private:
    // The library makes tables of its own with its first request: here, before there are workers,
    // so that all these do is read them.
    void make_tables() {
        NobodysStream stream;
        bool is_closed = false;
        process_request(stream, true, is_closed, nullptr);
    }

    bool process_and_close_socket(socket_t socket) override {
        Connection connection(socket, tls_.get());
        if (is_stopping_ || (pool_ && pool_->waiting() > most_waiting)) return false;
        if (!connection.greet(Clock::now() + options_.request_time)) return false;
        RequestStream stream(connection, options_);
        for (int i = 0; i < most_requests; ++i) {
            if (!stream.has_buffered() && !wait_for_request(connection, i == 0)) break;
            Received received;
            if (!receive(stream, connection.is_secure(), received)) break;
            // Where it was not read as a whole, what follows cannot be told from what belongs to
            // it.
            received.is_last =
                i + 1 == most_requests || received.refusal || asks_to_close(received.request);
            stream.tell(received.request.method == "HEAD" ? "HEAD / HTTP/1.1\r\n\r\n"
                                                          : "GET / HTTP/1.1\r\n\r\n");
            bool is_closed = false;
            answered = &received;
            const bool is_written = process_request(stream, false, is_closed, nullptr);
            answered = nullptr;
            if (!is_written || received.is_last) break;
        }
        connection.end(end_patience);
        return true;
    }

    // A connection that says nothing gives way to those that wait, and to the end of the server.
    bool wait_for_request(Connection& connection, bool is_first) const {
        const auto begin = Clock::now();
        while (true) {
            if (connection.wait_for_bytes(milliseconds(50))) return true;
            const auto waited = Clock::now() - begin;
            const bool is_awaited = pool_->waiting() > 0;
            if (is_stopping_ || waited >= options_.idle_time ||
                (is_awaited && waited >= (is_first ? first_patience : next_patience)))
                return false;
        }
    }

    // False where nothing came that could be answered.
    bool receive(RequestStream& stream, bool is_secure, Received& received) const {
        HttpRequest& request = received.request;
        request.is_secure = is_secure;
        request.local_port = port_;
        int remote_port = 0, local_port = 0;
        stream.get_remote_ip_and_port(request.remote_address, remote_port);
        stream.get_local_ip_and_port(request.local_address, local_port);
        std::string head;
        if (!stream.read_head(head)) return false;
        try {
            read_head(head, options_.most_headers, request);
            const std::size_t length = body_length(request, options_.largest_body);
            if (length > 0 && equal_ascii_ignoring_case(request.header("Expect"), "100-continue"))
                stream.Stream::write("HTTP/1.1 100 Continue\r\n\r\n");
            std::string body;
            if (!stream.read_body(length, body))
                throw Refusal(408, "The request did not come in time.");
            request.body = RequestBody(std::move(body));
        } catch (const Refusal& refusal) {
            received.refusal = refusal;
        }
        return true;
    }

    HttpResponse answer_to(const Received& received) const {
        if (received.refusal)
            return error_response({received.refusal->status, received.refusal->what()});
        return handler_(received.request);
    }

    static void put(HttpResponse response, httplib::Response& answer) {
        answer.status = response.status;
        for (const auto& [name, value] : response.headers) answer.headers.emplace(name, value);
        if (response.file) {
            response.body.resize(response.file->length);
            response.body.resize(response.file->file->read(response.file->offset, response.body));
        }
        if (response.status != 304 && response.status != 204)
            answer.set_content(response.body, response.content_type);
    }

    const ServerOptions options_;
    const HttpServer::Handler handler_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_;
    WorkerPool* pool_ = nullptr;  // the library's
    int port_ = 0;
    std::atomic<bool> is_serving_ = false;
    std::atomic<bool> is_stopping_ = false;
    std::atomic<bool> has_ended_ = false;
};

HttpServer::HttpServer(ServerOptions options, Handler handler)
    : listener_(std::make_unique<Listener>(std::move(options), std::move(handler))) {}

HttpServer::~HttpServer() = default;

int HttpServer::port() const { return listener_->port(); }

std::string HttpServer::url() const {
    const bool is_v6 = listener_->address().find(':') != std::string::npos;
    return (listener_->is_secure() ? "https://" : "http://") +
           (is_v6 ? "[" + listener_->address() + "]" : listener_->address()) + ":" +
           std::to_string(port());
}

void HttpServer::run() { listener_->serve(); }
void HttpServer::stop() { listener_->stop_serving(); }

}  // namespace orvo::web
