#include "host/web/request_head.h"

#include <gtest/gtest.h>

namespace orvo::web {
namespace {

template <class Action>
std::string refusal_of(Action action) {
    try {
        action();
        return "nothing was refused";
    } catch (const Refusal& refusal) {
        return std::to_string(refusal.status) + ' ' + refusal.what();
    }
}

TEST(RequestHead, IsReadAsItWasSent) {
    HttpRequest request;
    read_head(
        "POST /a%20b?x=%2B HTTP/1.1\r\nHost: h:80\r\nCookie:  a=%0d%0a; b=1 \r\n"
        "Content-Length: 3\r\n\r\n",
        100, request);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/a%20b?x=%2B");
    EXPECT_EQ(request.version, "HTTP/1.1");
    EXPECT_EQ(request.header("HOST"), "h:80");
    EXPECT_EQ(request.header("cookie"), "a=%0d%0a; b=1");
    EXPECT_EQ(request.header("none"), "");
    EXPECT_EQ(body_length(request, 10), 3u);
}

TEST(RequestHead, IsRefusedWhereItIsNone) {
    constexpr std::string_view line = "400 The request line cannot be read.";
    constexpr std::string_view header = "400 A header of the request cannot be read.";
    constexpr std::string_view host = "400 The request names no host, or several.";
    struct Refused {
        std::string_view head;
        std::string_view reason;
    };
    for (const auto& [head, reason] : std::initializer_list<Refused>{
             {"\r\n\r\n", line},
             {"GET\r\n\r\n", line},
             {"GET /\r\n\r\n", line},
             {"GET  HTTP/1.1\r\n\r\n", line},
             {"GET / HTTP/2.0\r\n\r\n", line},
             {"GE(T / HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET /a b HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET /a\x01 HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET / HTTP/1.1\r\nHost: h\r\nno colon\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nna me: v\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\n folded: v\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nA: x\x01y\r\n\r\n", header},
             {"GET / HTTP/1.1\r\n\r\n", host},
             {"GET / HTTP/1.1\r\nHost: a\r\nhost: b\r\n\r\n", host},
         }) {
        HttpRequest request;
        EXPECT_EQ(refusal_of([&] { read_head(head, 100, request); }), reason) << head;
    }
}

TEST(RequestHead, IsRefusedWhereItIsTooLong) {
    HttpRequest request;
    EXPECT_EQ(refusal_of([&] { read_head("GET / HTTP/1.1\r\nHost: h\r\nA: b", 100, request); }),
              "431 The headers of the request are too large.");
    EXPECT_EQ(refusal_of([&] { read_head("GET /" + std::string(8000, 'x'), 100, request); }),
              "414 The address is longer than 8000 characters.");
}

TEST(RequestHead, HasAHundredHeadersAtMost) {
    std::string head = "GET / HTTP/1.1\r\nHost: h\r\n";
    for (int i = 1; i < 100; ++i) head += "A: b\r\n";
    HttpRequest request;
    read_head(head + "\r\n", 100, request);
    EXPECT_EQ(request.headers.size(), 100u);
    HttpRequest other;
    EXPECT_EQ(refusal_of([&] { read_head(head + "A: b\r\n\r\n", 100, other); }),
              "431 The request has more than 100 headers.");
}

std::string length_of(const std::string& method, const Headers& headers) {
    HttpRequest request{.method = method, .target = "/", .headers = headers};
    return refusal_of([&] { throw Refusal(0, std::to_string(body_length(request, 1000))); });
}

TEST(BodyLength, IsSaidInFront) {
    EXPECT_EQ(length_of("GET", {}), "0 0");
    EXPECT_EQ(length_of("POST", {{"Content-Length", "0"}}), "0 0");
    EXPECT_EQ(length_of("POST", {{"Content-Length", "1000"}}), "0 1000");
    EXPECT_EQ(length_of("POST", {{"Content-Length", "7"}, {"content-length", "7"}}), "0 7");
    constexpr auto unreadable = "400 The length of the request cannot be read.";
    EXPECT_EQ(length_of("POST", {{"Content-Length", "7"}, {"Content-Length", "8"}}), unreadable);
    EXPECT_EQ(length_of("POST", {{"Content-Length", "-1"}}), unreadable);
    EXPECT_EQ(length_of("POST", {{"Content-Length", "1e3"}}), unreadable);
    EXPECT_EQ(length_of("POST", {{"Content-Length", ""}}), unreadable);
    constexpr auto missing = "411 A form has to say its length in front.";
    EXPECT_EQ(length_of("POST", {}), missing);
    EXPECT_EQ(length_of("POST", {{"Content-Length", "7"}, {"Transfer-Encoding", "chunked"}}),
              missing);
    constexpr auto large = "413 The form is larger than 1000 bytes.";
    EXPECT_EQ(length_of("POST", {{"Content-Length", "1001"}}), large);
    EXPECT_EQ(length_of("POST", {{"Content-Length", "99999999999999999999999"}}), large);
}

}  // namespace
}  // namespace orvo::web
