#include "host/web/server/request_parser.h"

#include <algorithm>
#include <boost/beast/http/basic_parser.hpp>
#include <limits>
#include <string>

namespace orvo::web {
namespace {

namespace beast = boost::beast;
namespace http = boost::beast::http;
using beast::error_code;

// Of a chunk's size with its extensions, and of the headers behind the last chunk.
constexpr std::size_t longest_chunk_line = 4096;
// Of the end of a body in chunks: the library takes for granted that so much is there.
constexpr std::size_t shortest_chunked_end = std::string_view("0\r\n\r\n").size();

std::string_view view(beast::string_view text) { return {text.data(), text.size()}; }

std::string message(const char* begin, std::size_t limit, const char* end) {
    return begin + std::to_string(limit) + end;
}

// Raises what a request of this error is answered.
[[noreturn]] void refuse(error_code error) {
    if (error == http::error::bad_method || error == http::error::bad_target ||
        error == http::error::bad_version)
        throw Refusal(400, "The request line cannot be read.");
    if (error == http::error::bad_content_length || error == http::error::bad_transfer_encoding)
        throw Refusal(400, "The length of the request cannot be read.");
    if (error == http::error::bad_chunk || error == http::error::bad_chunk_extension)
        throw Refusal(400, "The chunks of the request cannot be read.");
    throw Refusal(400, "A header of the request cannot be read.");
}

bool is_multipart(std::string_view type) {
    return equal_ascii_ignoring_case(type.substr(0, 10), "multipart/");
}

bool is_host(std::string_view host) {
    return host.find_first_of(" \t/\\@?#,\"<>") == std::string_view::npos;
}

}  // namespace

class RequestParser::Reader : public http::basic_parser<true> {
public:
    explicit Reader(const RequestLimits& limits) : limits_(limits) {
        request.method = request.target = "-";
        eager(true);
        header_limit(std::numeric_limits<std::uint32_t>::max());
        // The parser would take none for a limit of no bytes.
        body_limit(std::numeric_limits<std::uint64_t>::max());
    }

    void limit_head() { eager(false); }
    void read_on() { eager(true); }

    HttpRequest request;
    RequestBodyWriter body;
    bool expects_continue = false;

private:
    void on_request_impl(http::verb, beast::string_view method, beast::string_view target,
                         int version, error_code&) override {
        request.method = view(method);
        request.target = view(target);
        request.version = version == 11 ? "HTTP/1.1" : "HTTP/1.0";
        if (request.target.find('#') != std::string::npos)
            throw Refusal(400, "The request line cannot be read.");
    }

    void on_field_impl(http::field, beast::string_view name, beast::string_view value,
                       error_code&) override {
        // Those behind the chunks of a body are passed over.
        if (has_head_) return;
        if (request.headers.size() >= limits_.most_headers)
            throw Refusal(431,
                          message("The request has more than ", limits_.most_headers, " headers."));
        request.headers.emplace_back(view(name), view(value));
    }

    void on_header_impl(error_code&) override {
        has_head_ = true;
        check_host();
        check_encoding();
        check_length();
        expects_continue = request.version == "HTTP/1.1" &&
                           equal_ascii_ignoring_case(request.header("Expect"), "100-continue") &&
                           (chunked() || content_length().value_or(0) > 0);
    }

    void check_host() {
        const auto is_host_header = [](const auto& header) {
            return equal_ascii_ignoring_case(header.first, "host");
        };
        const auto first =
            std::find_if(request.headers.begin(), request.headers.end(), is_host_header);
        const auto count =
            std::count_if(request.headers.begin(), request.headers.end(), is_host_header);
        if (count > 1 || (count == 0 && request.version == "HTTP/1.1"))
            throw Refusal(400, "The request names no host, or several.");
        take_host_of_target(count == 0 ? nullptr : &first->second);
        if (count == 1 && !is_host(first->second))
            throw Refusal(400, "The request names no host, or several.");
    }

    // An address with a scheme and a host, as proxies are asked: the host counts more than the one
    // of the header.
    void take_host_of_target(std::string* host) {
        const std::string_view target = request.target;
        const auto scheme = target.find("://");
        if (target.starts_with('/') || scheme == target.npos) return;
        const std::string_view name = target.substr(0, scheme);
        if (!equal_ascii_ignoring_case(name, "http") && !equal_ascii_ignoring_case(name, "https"))
            throw Refusal(400, "The address is not one of this server.");
        const std::string_view rest = target.substr(scheme + 3);
        const auto end = std::min(rest.find_first_of("/?"), rest.size());
        const std::string authority(rest.substr(0, end));
        if (authority.empty() || !is_host(authority))
            throw Refusal(400, "The request names no host, or several.");
        const std::string path(rest.substr(end));
        request.target = path.starts_with('/') ? path : "/" + path;
        if (host)
            *host = authority;
        else
            request.headers.emplace_back("Host", authority);
    }

    void check_encoding() const {
        for (const auto& [name, value] : request.headers) {
            if (!equal_ascii_ignoring_case(name, "transfer-encoding")) continue;
            if (request.version == "HTTP/1.0")
                throw Refusal(400, "The length of the request cannot be read.");
            if (!equal_ascii_ignoring_case(value, "chunked"))
                throw Refusal(501, "No transfer encoding but chunked is known here.");
        }
    }

    void check_length() {
        int lengths = 0;
        for (const auto& [name, value] : request.headers)
            if (equal_ascii_ignoring_case(name, "content-length") &&
                (++lengths > 1 || value.find_first_not_of("0123456789") != std::string::npos))
                throw Refusal(400, "The length of the request cannot be read.");
        if (!chunked() && !content_length() && request.method == "POST")
            throw Refusal(411, "A form has to say its length in front.");
        const bool may_have_files = is_multipart(request.header("Content-Type"));
        limit_ = may_have_files ? limits_.largest_upload : limits_.largest_body;
        if (content_length().value_or(0) > limit_) refuse_length();
    }

    [[noreturn]] void refuse_length() const {
        throw Refusal(413, message("The form is larger than ", limit_, " bytes."));
    }

    void on_body_init_impl(const boost::optional<std::uint64_t>&, error_code&) override {}

    std::size_t on_body_impl(beast::string_view bytes, error_code&) override {
        body.append(view(bytes));
        return bytes.size();
    }

    void on_chunk_header_impl(std::uint64_t size, beast::string_view, error_code&) override {
        if (size > limit_ - body.size()) refuse_length();
    }

    std::size_t on_chunk_body_impl(std::uint64_t, beast::string_view bytes, error_code&) override {
        body.append(view(bytes));
        return bytes.size();
    }

    void on_finish_impl(error_code&) override {}
    void on_response_impl(int, beast::string_view, int, error_code&) override {}

    const RequestLimits& limits_;
    std::uint64_t limit_ = 0;  // of the body
    bool has_head_ = false;
};

RequestParser::RequestParser(const RequestLimits& limits)
    : limits_(limits), reader_(std::make_unique<Reader>(limits_)) {}

RequestParser::~RequestParser() = default;

bool RequestParser::feed(std::string_view bytes) {
    bytes_ += bytes;
    if (!has_head()) {
        scan_head();
        if (head_length_ == 0) return false;
        parse_head();
    }
    return reader_->is_done() || parse_body();
}

// Finds the end of the head, and refuses what the library would let pass.
void RequestParser::scan_head() {
    if (scanned_ == 0) {
        std::size_t empty_lines = 0;
        while (bytes_.compare(empty_lines, 2, "\r\n") == 0) empty_lines += 2;
        bytes_.erase(0, empty_lines);
    }
    if (bytes_ == "\r") return;
    for (; scanned_ < bytes_.size(); ++scanned_) {
        if (scanned_ == limits_.largest_head)
            throw Refusal(431, "The headers of the request are too large.");
        if (line_begin_ == 0 && scanned_ == limits_.longest_line)
            throw Refusal(
                414, message("The address is longer than ", limits_.longest_line, " characters."));
        const char c = bytes_[scanned_];
        const bool is_after_return = scanned_ > 0 && bytes_[scanned_ - 1] == '\r';
        if ((c == '\n') != is_after_return) refuse_head();
        if (scanned_ == line_begin_ && (c == ' ' || c == '\t')) refuse_head();
        if (c != '\n') continue;
        if (scanned_ == line_begin_ + 1) {
            head_length_ = scanned_ + 1;
            return;
        }
        line_begin_ = scanned_ + 1;
    }
}

void RequestParser::refuse_head() const {
    throw Refusal(400, line_begin_ == 0 ? "The request line cannot be read."
                                        : "A header of the request cannot be read.");
}

void RequestParser::parse_head() {
    error_code error;
    reader_->limit_head();
    reader_->put(boost::asio::buffer(bytes_.data(), head_length_), error);
    if (error) refuse(error);
    bytes_.erase(0, head_length_);
    reader_->read_on();
}

bool RequestParser::parse_body() {
    if (bytes_.empty() || (reader_->chunked() && bytes_.size() < shortest_chunked_end))
        return false;
    error_code error;
    const std::size_t count = reader_->put(boost::asio::buffer(bytes_), error);
    bytes_.erase(0, count);
    if (error && error != http::error::need_more) refuse(error);
    if (!reader_->is_done() && bytes_.size() > longest_chunk_line)
        throw Refusal(400, "The chunks of the request cannot be read.");
    return reader_->is_done();
}

bool RequestParser::has_begun() const { return has_head() || (!bytes_.empty() && bytes_ != "\r"); }
bool RequestParser::has_head() const { return reader_->is_header_done(); }
bool RequestParser::expects_continue() const { return reader_->expects_continue; }
bool RequestParser::keeps_alive() const { return has_head() && reader_->keep_alive(); }
std::uint64_t RequestParser::body_size() const { return reader_->body.size(); }
const HttpRequest& RequestParser::request() const { return reader_->request; }

HttpRequest RequestParser::take() {
    HttpRequest request = std::move(reader_->request);
    request.body = reader_->body.take();
    reader_ = std::make_unique<Reader>(limits_);
    scanned_ = line_begin_ = head_length_ = 0;
    return request;
}

}  // namespace orvo::web
