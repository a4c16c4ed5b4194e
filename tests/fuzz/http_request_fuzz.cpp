// Requests of one connection. The input is its bytes; the first one says in which pieces they come.

#include <algorithm>
#include <vector>

#include "host/web/server/request_parser.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::web;

constexpr RequestLimits limits{.longest_line = 200,
                               .largest_head = 1000,
                               .most_headers = 10,
                               .largest_body = 100,
                               .largest_upload = 300};

// What was read of a connection: requests, and the refusal that ended it.
struct Reading {
    std::vector<HttpRequest> requests = {};
    int refusal = 0;
};

// Where the input ends early, one reader may not know yet what the other refuses.
bool agree(const Reading& a, const Reading& b) {
    return (a.refusal == b.refusal || a.refusal == 0 || b.refusal == 0) &&
           std::equal(a.requests.begin(), a.requests.end(), b.requests.begin(), b.requests.end(),
                      [](const HttpRequest& x, const HttpRequest& y) {
                          return x.method == y.method && x.target == y.target &&
                                 x.version == y.version && x.headers == y.headers &&
                                 x.body.text() == y.body.text();
                      });
}

Reading read(std::string_view bytes, std::size_t piece) {
    Reading reading;
    RequestParser parser(limits);
    try {
        while (!bytes.empty()) {
            const std::string_view now = bytes.substr(0, piece);
            bytes.remove_prefix(now.size());
            for (bool is_complete = parser.feed(now); is_complete; is_complete = parser.feed({})) {
                require(parser.has_begun() && parser.has_head(),
                        "a request has begun before it ends");
                reading.requests.push_back(parser.take());
            }
            require(parser.body_size() <= limits.largest_upload, "a body is limited");
        }
    } catch (const Refusal& refusal) {
        reading.refusal = refusal.status;
    }
    return reading;
}

bool has_any(std::string_view text, std::string_view characters) {
    return text.find_first_of(characters) != text.npos;
}

void check(const HttpRequest& request) {
    constexpr std::string_view line_ends("\r\n\0", 3);
    require(!request.method.empty() && !has_any(request.method, " \t\r\n:/"),
            "a method is one word");
    require(!request.target.empty() && !has_any(request.target, " \t\r\n#"),
            "a target is one word");
    require(request.version == "HTTP/1.1" || request.version == "HTTP/1.0",
            "a version is a known one");
    require(request.headers.size() <= limits.most_headers + 1, "headers are limited");
    for (const auto& [name, value] : request.headers) {
        require(!name.empty() && !has_any(name, " \t:") && !has_any(name, line_ends),
                "a header's name is one word");
        require(!has_any(value, line_ends), "a header is one line");
    }
    const bool has_length = !request.header("Content-Length").empty();
    const bool has_encoding = !request.header("Transfer-Encoding").empty();
    require(!has_length || !has_encoding, "a body has one way of telling its end");
    require(has_length || has_encoding || request.body.empty(), "a body tells its end");
    require(!has_length ||
                std::stoull(std::string(request.header("Content-Length"))) == request.body.size(),
            "a body is as long as it says");
}

// As another server would be sent it.
std::string sent_on(const HttpRequest& request) {
    std::string bytes = request.method + ' ' + request.target + ' ' + request.version + "\r\n";
    for (const auto& [name, value] : request.headers)
        if (!equal_ascii_ignoring_case(name, "Transfer-Encoding"))
            bytes += name + ": " + value + "\r\n";
    if (!request.header("Transfer-Encoding").empty())
        bytes += "Content-Length: " + std::to_string(request.body.size()) + "\r\n";
    return bytes + "\r\n" + request.body.text();
}

}  // namespace

void http_request_properties(std::string_view input) {
    if (input.empty()) return;
    const std::size_t piece = static_cast<unsigned char>(input.front()) % 32 + 1;
    const std::string_view bytes = input.substr(1);
    const Reading whole = read(bytes, bytes.size() + 1);
    require(agree(read(bytes, piece), whole), "requests are the same in whatever pieces they come");
    for (const HttpRequest& request : whole.requests) {
        check(request);
        std::string again = sent_on(request);
        // A host that came with the address takes a place more than there may be.
        if (request.headers.size() > limits.most_headers) continue;
        const Reading copy = read(again + "GET / HTTP/1.0\r\n\r\n", piece);
        require(copy.requests.size() == 2 && copy.refusal == 0,
                "a request that is sent on is one request");
        require(copy.requests.front().body.text() == request.body.text() &&
                    copy.requests.front().target == request.target,
                "a request that is sent on is the same");
    }
}

}  // namespace orvo::fuzz
