#include "host/web/server/request_parser.h"

#include <gtest/gtest.h>

namespace orvo::web {
namespace {

using namespace std::string_view_literals;

constexpr RequestLimits limits{.largest_body = 1000, .largest_upload = 5000};

std::string refusal_of(std::string_view bytes, RequestParser&& parser = RequestParser(limits)) {
    try {
        return parser.feed(bytes) ? "nothing was refused" : "more is wanted";
    } catch (const Refusal& refusal) {
        return std::to_string(refusal.status) + ' ' + refusal.what();
    }
}

// The one request that these bytes are.
HttpRequest read(std::string_view bytes) {
    RequestParser parser(limits);
    EXPECT_TRUE(parser.feed(bytes)) << bytes;
    return parser.take();
}

std::string with_headers(std::string_view headers) {
    return "POST / HTTP/1.1\r\nHost: h\r\n" + std::string(headers) + "\r\n";
}

std::string chunked(std::string_view chunks) {
    return with_headers("Transfer-Encoding: chunked\r\n") + std::string(chunks);
}

TEST(RequestParser, ReadsARequestAsItWasSent) {
    const HttpRequest request = read(
        "POST /a%20b?x=%2B HTTP/1.1\r\nHost: h:80\r\nCookie:  a=%0d%0a; b=\xC3\xA4\xFF \r\n"
        "Content-Length: 3\r\n\r\nabc");
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/a%20b?x=%2B");
    EXPECT_EQ(request.version, "HTTP/1.1");
    EXPECT_EQ(request.header("HOST"), "h:80");
    EXPECT_EQ(request.header("cookie"), "a=%0d%0a; b=\xC3\xA4\xFF");
    EXPECT_EQ(request.header("none"), "");
    EXPECT_EQ(request.body.text(), "abc");
}

TEST(RequestParser, ReadsItByteByByteAsWell) {
    const std::string sent = chunked("3;x=y\r\nabc\r\n2\r\nde\r\n0\r\nLast: z\r\n\r\n");
    RequestParser parser(limits);
    for (std::size_t i = 0; i + 1 < sent.size(); ++i) {
        EXPECT_FALSE(parser.feed(sent.substr(i, 1))) << i;
        EXPECT_TRUE(parser.has_begun());
        EXPECT_EQ(parser.has_head(), i + 1 >= chunked("").size()) << i;
    }
    EXPECT_TRUE(parser.feed(sent.substr(sent.size() - 1)));
    const HttpRequest request = parser.take();
    EXPECT_EQ(request.body.text(), "abcde");
    EXPECT_EQ(request.header("Last"), "") << "what stands behind the body is passed over";
}

TEST(RequestParser, ReadsABodyWithoutChunksByteByByte) {
    RequestParser parser(limits);
    EXPECT_FALSE(parser.feed(chunked("")));
    for (const char c : std::string("0\r\n\r")) EXPECT_FALSE(parser.feed({&c, 1}));
    EXPECT_TRUE(parser.feed("\n"));
    EXPECT_EQ(parser.take().body.size(), 0u);
}

TEST(RequestParser, KeepsWhatFollowsForTheNextRequest) {
    RequestParser parser(limits);
    EXPECT_TRUE(
        parser.feed("\r\n\r\nPOST /1 HTTP/1.1\r\nHost: h\r\nContent-Length: 2\r\n\r\nab"
                    "\r\nGET /2 HTTP/1.1\r\nHost: h\r\n\r\nGET /3 HTTP/1.1\r\nHo"));
    EXPECT_EQ(parser.take().target, "/1");
    EXPECT_TRUE(parser.feed({}));
    EXPECT_EQ(parser.take().target, "/2");
    EXPECT_FALSE(parser.feed({}));
    EXPECT_TRUE(parser.feed("st: h\r\n\r\n"));
    EXPECT_EQ(parser.take().target, "/3");
    EXPECT_FALSE(parser.feed("\r\n\r"));
    EXPECT_FALSE(parser.has_begun()) << "empty lines are no request";
    EXPECT_EQ(parser.request().target, "-");
}

TEST(RequestParser, KeepsALargeBodyOnDisk) {
    RequestParser parser({.largest_body = 1'000'000});
    const std::string half(RequestBodyWriter::most_in_memory, 'x');
    EXPECT_FALSE(parser.feed(with_headers("Content-Length: 131072\r\n") + half));
    EXPECT_EQ(parser.body_size(), half.size());
    EXPECT_TRUE(parser.feed(half));
    EXPECT_EQ(parser.take().body.text(), half + half);
}

TEST(RequestParser, KnowsWhetherTheConnectionIsUsedAgain) {
    struct Kept {
        std::string_view version, connection;
        bool is_kept;
    };
    for (const auto& [version, connection, is_kept] :
         std::initializer_list<Kept>{{"1.1", "", true},
                                     {"1.1", "close", false},
                                     {"1.1", "Close, TE", false},
                                     {"1.1", "TE, keep-alive", true},
                                     {"1.0", "", false},
                                     {"1.0", "keep-alive", true},
                                     {"1.0", "TE, Keep-Alive", true}}) {
        RequestParser parser(limits);
        std::string head = "GET / HTTP/" + std::string(version) + "\r\nHost: h\r\n";
        if (!connection.empty()) head += "Connection: " + std::string(connection) + "\r\n";
        EXPECT_TRUE(parser.feed(head + "\r\n"));
        EXPECT_EQ(parser.keeps_alive(), is_kept) << version << ' ' << connection;
    }
}

TEST(RequestParser, TakesTheHostOfAnAddressThatHasOne) {
    HttpRequest request = read("GET http://shop.example:81/a?b HTTP/1.1\r\nHost: other\r\n\r\n");
    EXPECT_EQ(request.target, "/a?b");
    EXPECT_EQ(request.header("Host"), "shop.example:81");
    request = read("GET HTTPS://shop.example?b HTTP/1.0\r\n\r\n");
    EXPECT_EQ(request.target, "/?b");
    EXPECT_EQ(request.header("Host"), "shop.example");
    EXPECT_EQ(read("GET /http://x/ HTTP/1.1\r\nHost: h\r\n\r\n").target, "/http://x/");
    EXPECT_EQ(read("OPTIONS * HTTP/1.1\r\nHost: h\r\n\r\n").target, "*");
}

TEST(RequestParser, TellsWhoWaitsForAWordBeforeTheBody) {
    RequestParser parser(limits);
    EXPECT_FALSE(parser.feed(with_headers("Expect: 100-Continue\r\nContent-Length: 1\r\n")));
    EXPECT_TRUE(parser.expects_continue());
    EXPECT_TRUE(parser.feed("x"));
    parser.take();
    EXPECT_TRUE(parser.feed(with_headers("Expect: 100-Continue\r\nContent-Length: 0\r\n")));
    EXPECT_FALSE(parser.expects_continue());
}

TEST(RequestParser, RefusesAHeadThatIsNone) {
    constexpr std::string_view line = "400 The request line cannot be read.";
    constexpr std::string_view header = "400 A header of the request cannot be read.";
    constexpr std::string_view host = "400 The request names no host, or several.";
    struct Refused {
        std::string_view head;
        std::string_view reason;
    };
    for (const auto& [head, reason] : std::initializer_list<Refused>{
             {"\r\n\r\n \r\n\r\n", line},
             {"GET\r\n\r\n", line},
             {"GET /\r\n\r\n", line},
             {"GET  HTTP/1.1\r\n\r\n", line},
             {"GET  / HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET / HTTP/2.0\r\n\r\n", line},
             {"GET / HTTP/1.1 \r\nHost: h\r\n\r\n", line},
             {"GE(T / HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET /a b HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET /a#b HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET /a\x01 HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET /a\tb HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET /a\0b HTTP/1.1\r\nHost: h\r\n\r\n"sv, line},
             {"\nGET / HTTP/1.1\r\nHost: h\r\n\r\n", line},
             {"GET / HTTP/1.1\nHost: h\n\n", line},
             {"GET / HTTP/1.1\r\r\nHost: h\r\n\r\n", line},
             {"GET / HTTP/1.1\r\nHost: h\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\rA: b\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nno colon\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\n: v\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nna me: v\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nname : v\r\n\r\n", header},
             {"GET / HTTP/1.1\r\n Host: h\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nA: b\r\n folded\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nA: b\r\n\tfolded\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nA: x\x01y\r\n\r\n", header},
             {"GET / HTTP/1.1\r\nHost: h\r\nA: x\0y\r\n\r\n"sv, header},
             {"GET / HTTP/1.1\r\nHost: h\r\nConnection: close;\r\n\r\n", header},
             {"GET / HTTP/1.1\r\n\r\n", host},
             {"GET / HTTP/1.1\r\nHost: a\r\nhost: b\r\n\r\n", host},
             {"GET / HTTP/1.1\r\nHost: a\r\nhost: a\r\n\r\n", host},
             {"GET / HTTP/1.1\r\nHost: a/b\r\n\r\n", host},
             {"GET / HTTP/1.1\r\nHost: a@b\r\n\r\n", host},
             {"GET http:///a HTTP/1.1\r\nHost: h\r\n\r\n", host},
             {"GET http://u@h/a HTTP/1.1\r\nHost: h\r\n\r\n", host},
             {"GET ftp://h/a HTTP/1.1\r\nHost: h\r\n\r\n",
              "400 The address is not one of this server."},
         })
        EXPECT_EQ(refusal_of(head), reason) << head;
}

TEST(RequestParser, RefusesWhatIsTooLong) {
    EXPECT_EQ(refusal_of("GET /" + std::string(8000, 'x')),
              "414 The address is longer than 8000 characters.");
    const std::string most = "GET /" + std::string(8000 - 16, 'x') + " HTTP/1.1\r\n";
    EXPECT_EQ(refusal_of(most + "Host: h\r\n\r\n"), "nothing was refused");
    EXPECT_EQ(refusal_of("GET / HTTP/1.1\r\nHost: h\r\nA: " + std::string(32 * 1024, 'x')),
              "431 The headers of the request are too large.");
    std::string head = "GET / HTTP/1.1\r\nHost: h\r\n";
    for (int i = 1; i < 100; ++i) head += "A: b\r\n";
    EXPECT_EQ(read(head + "\r\n").headers.size(), 100u);
    EXPECT_EQ(refusal_of(head + "A: b\r\n\r\n"), "431 The request has more than 100 headers.");
}

TEST(RequestParser, RefusesALengthThatIsNoneOrCouldBeTwo) {
    EXPECT_EQ(read(with_headers("Content-Length: 0\r\n")).body.size(), 0u);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: h\r\n\r\n").body.size(), 0u);
    constexpr std::string_view unreadable = "400 The length of the request cannot be read.";
    for (const std::string_view headers : {
             "Content-Length: 7\r\nContent-Length: 8\r\n",
             "Content-Length: 7\r\ncontent-length: 7\r\n",
             "Content-Length: 7, 7\r\n",
             "Content-Length: 7, 8\r\n",
             "Content-Length: -1\r\n",
             "Content-Length: +1\r\n",
             "Content-Length: 0x1\r\n",
             "Content-Length: 1e3\r\n",
             "Content-Length: 1 1\r\n",
             "Content-Length:\r\n",
             "Content-Length: 99999999999999999999999\r\n",
             "Content-Length: 7\r\nTransfer-Encoding: chunked\r\n",
             "Transfer-Encoding: chunked\r\nContent-Length: 7\r\n",
             "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n",
         })
        EXPECT_EQ(refusal_of(with_headers(headers)), unreadable) << headers;
    EXPECT_EQ(refusal_of("POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n"), unreadable);
    constexpr std::string_view unknown = "501 No transfer encoding but chunked is known here.";
    for (const std::string_view encoding :
         {"gzip", "gzip, chunked", "chunked, gzip", "identity", "xchunked", "\"chunked\"", ""})
        EXPECT_EQ(refusal_of(with_headers("Transfer-Encoding: " + std::string(encoding) + "\r\n")),
                  unknown)
            << encoding;
    EXPECT_EQ(refusal_of(with_headers("Transfer-Encoding: gzip\r\nContent-Length: 7\r\n")),
              unknown);
    EXPECT_EQ(refusal_of(with_headers("")), "411 A form has to say its length in front.");
}

TEST(RequestParser, RefusesABodyThatIsTooLarge) {
    constexpr std::string_view large = "413 The form is larger than 1000 bytes.";
    EXPECT_EQ(refusal_of(with_headers("Content-Length: 1001\r\n")), large);
    EXPECT_EQ(refusal_of(with_headers("Content-Length: 1000\r\n")), "more is wanted");
    EXPECT_EQ(refusal_of(chunked("3e9\r\n")), large) << "as soon as it is said";
    EXPECT_EQ(refusal_of(chunked("3e8\r\n" + std::string(1000, 'x') + "\r\n1\r\n")), large);
    EXPECT_EQ(refusal_of(chunked("ffffffffffffffff\r\n")), large);
    const std::string upload = "Content-Type: Multipart/form-data; boundary=x\r\n";
    EXPECT_EQ(refusal_of(with_headers(upload + "Content-Length: 5000\r\n")), "more is wanted");
    EXPECT_EQ(refusal_of(with_headers(upload + "Content-Length: 5001\r\n")),
              "413 The form is larger than 5000 bytes.");
}

TEST(RequestParser, RefusesChunksThatAreNone) {
    constexpr std::string_view unreadable = "400 The chunks of the request cannot be read.";
    for (const std::string_view chunks : {
             "x\r\n",
             "\r\nabc",
             "-1\r\n",
             "0x3\r\nabc\r\n",
             "3 abc\r\n",
             "3\r\nabcd\r\n",
             "3\r\nabc0\r\n\r\n",
             "3;\r\nabc\r\n",
             "3;a=\"\r\nabc\r\n0\r\n\r\n",
             "3\nabc\n0\n\n\r\n",
             "10000000000000000\r\n",
         })
        EXPECT_EQ(refusal_of(chunked(std::string(chunks) + "\r\n\r\n\"\r\n\r\n")), unreadable)
            << chunks;
    EXPECT_EQ(refusal_of(chunked("3;" + std::string(5000, 'a'))), unreadable) << "without an end";
    EXPECT_EQ(refusal_of(chunked("0\r\n" + std::string(5000, 'a'))), unreadable);
    EXPECT_EQ(refusal_of(chunked("0\r\nno header\r\n\r\n")),
              "400 A header of the request cannot be read.");
}

}  // namespace
}  // namespace orvo::web
