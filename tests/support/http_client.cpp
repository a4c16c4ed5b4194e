#include "tests/support/http_client.h"

#include <openssl/ssl.h>

#include <array>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <limits>
#include <stdexcept>

#include "tests/support/loopback_socket.h"

namespace orvo {
namespace {

namespace http = boost::beast::http;

std::string form_encoded(std::string_view text) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 && byte < 0x80) {
            encoded += c;
        } else {
            encoded += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return encoded;
}

std::string lines_of(const HttpFields& headers) {
    std::string lines;
    for (const auto& [name, value] : headers) lines += name + ": " + value + "\r\n";
    return lines;
}

// A socket's BIO that writes without the signal (SIGPIPE) for a connection that has ended.
const BIO_METHOD* quiet_socket() {
    static BIO_METHOD* const made = [] {
        const BIO_METHOD* usual = BIO_s_socket();
        BIO_METHOD* quiet = BIO_meth_new(BIO_TYPE_SOCKET, "quiet socket");
        BIO_meth_set_create(quiet, BIO_meth_get_create(usual));
        BIO_meth_set_destroy(quiet, BIO_meth_get_destroy(usual));
        BIO_meth_set_ctrl(quiet, BIO_meth_get_ctrl(usual));
        BIO_meth_set_read(quiet, BIO_meth_get_read(usual));
        BIO_meth_set_write(quiet, [](BIO* bio, const char* bytes, int count) {
            const auto socket = static_cast<int>(BIO_get_fd(bio, nullptr));
            return static_cast<int>(
                send(socket, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL));
        });
        return quiet;
    }();
    return made;
}

}  // namespace

std::size_t HttpResult::Answer::get_header_value_count(std::string_view name) const {
    std::size_t count = 0;
    for (const auto& [key, value] : headers)
        if (boost::beast::iequals({key.data(), key.size()}, {name.data(), name.size()})) ++count;
    return count;
}

std::string HttpResult::Answer::get_header_value(std::string_view name, std::size_t index) const {
    for (const auto& [key, value] : headers)
        if (boost::beast::iequals({key.data(), key.size()}, {name.data(), name.size()}) &&
            index-- == 0)
            return value;
    return {};
}

const HttpResult::Answer* HttpResult::operator->() const {
    if (!answer_) throw std::runtime_error("no answer: " + error_);
    return answer_.get();
}

class HttpClient::Connection {
public:
    Connection(int port, const std::filesystem::path& certificate, int patience,
               const std::string& greeting)
        : socket_(loopback_socket(port, patience)), is_open_(socket_ >= 0) {
        write(greeting);
        if (is_open_ && !certificate.empty()) greet(certificate);
    }
    ~Connection() {
        tls_.reset();
        if (socket_ >= 0) close(socket_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool is_open() const { return is_open_; }

    bool write(std::string_view bytes) {
        while (is_open_ && !bytes.empty()) {
            const auto count =
                tls_ ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                     : send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            is_open_ = count > 0;
            if (is_open_) bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return is_open_;
    }

    // Empty at the end.
    std::string_view read() {
        const auto count = tls_ ? SSL_read(tls_.get(), buffer_.data(), buffer_.size())
                                : recv(socket_, buffer_.data(), buffer_.size(), 0);
        is_open_ = count > 0;
        return {buffer_.data(), is_open_ ? static_cast<std::size_t>(count) : 0};
    }

private:
    void greet(const std::filesystem::path& certificate) {
        context_.reset(SSL_CTX_new(TLS_client_method()));
        SSL_CTX_load_verify_locations(context_.get(), certificate.c_str(), nullptr);
        SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER, nullptr);
        tls_.reset(SSL_new(context_.get()));
        BIO* bio = BIO_new(quiet_socket());
        BIO_set_fd(bio, socket_, BIO_NOCLOSE);
        SSL_set_bio(tls_.get(), bio, bio);
        is_open_ = SSL_connect(tls_.get()) == 1;
    }

    struct FreeContext {
        void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    };
    struct FreeTls {
        void operator()(SSL* tls) const { SSL_free(tls); }
    };

    const int socket_;
    bool is_open_;
    std::unique_ptr<SSL_CTX, FreeContext> context_;
    std::unique_ptr<SSL, FreeTls> tls_;
    std::array<char, 64 * 1024> buffer_;
};

HttpClient::HttpClient(int port, std::filesystem::path certificate, int patience,
                       std::string greeting)
    : port_(port),
      certificate_(std::move(certificate)),
      patience_(patience),
      greeting_(std::move(greeting)) {}
HttpClient::~HttpClient() = default;
HttpClient::HttpClient(HttpClient&&) noexcept = default;

HttpResult HttpClient::get(const std::string& target, const HttpFields& headers) {
    return ask("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" + lines_of(headers) + "\r\n");
}

HttpResult HttpClient::post(const std::string& target, const std::string& body,
                            const std::string& content_type, const HttpFields& headers) {
    return ask("POST " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: " + content_type +
               "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + lines_of(headers) +
               "\r\n" + body);
}

HttpResult HttpClient::post(const std::string& target, const HttpFields& form,
                            const HttpFields& headers) {
    std::string body;
    for (const auto& [name, value] : form)
        body += (body.empty() ? "" : "&") + form_encoded(name) + '=' + form_encoded(value);
    return post(target, body, "application/x-www-form-urlencoded", headers);
}

HttpResult HttpClient::ask(const std::string& request) {
    const bool is_new = !connection_;
    if (is_new)
        connection_ = std::make_unique<Connection>(port_, certificate_, patience_, greeting_);
    boost::beast::error_code error;
    http::response_parser<http::string_body> parser;
    parser.body_limit(std::numeric_limits<std::uint64_t>::max());
    parser.eager(true);
    std::string unread;
    if (connection_->write(request)) {
        while (!parser.is_done()) {
            const std::string_view bytes = connection_->read();
            if (bytes.empty()) {
                error = http::error::end_of_stream;
                if (parser.got_some()) parser.put_eof(error);
                break;
            }
            unread += bytes;
            unread.erase(0, parser.put(boost::asio::buffer(unread), error));
            if (error && error != http::error::need_more) break;
        }
    }
    if (!parser.is_done()) {
        connection_ = nullptr;
        // The server has closed a connection that was idle.
        if (!is_new && !parser.got_some()) return ask(request);
        return HttpResult("no answer, or half of one: " + error.message());
    }
    if (!parser.keep_alive() || !connection_->is_open()) connection_ = nullptr;
    HttpResult::Answer answer{static_cast<int>(parser.get().result_int()), {}, parser.get().body()};
    for (const auto& field : parser.get())
        answer.headers.emplace_back(std::string(field.name_string()), std::string(field.value()));
    return HttpResult(std::move(answer));
}

}  // namespace orvo
