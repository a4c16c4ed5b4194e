// The server on the wire: a real port on the loopback address, and a client that says whatever it
// likes.

#include "host/web/server/http_server.h"

#include <gtest/gtest.h>

#include <thread>

#include "host/web/messages/request_id.h"
#include "tests/host/web/echo_server.h"
#include "tests/host/web/server_certificate.h"
#include "tests/support/http_client.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class HttpServerTest : public testing::Test {
protected:
    std::string said(const std::string& request) { return Wire(server_.port()).ask(request); }

    RunningServer server_{quick(), echo};
};

TEST_F(HttpServerTest, AnswersRequestsAsTheyWereSent) {
    const std::string answer = said(
        "POST /a%20b?x=%41 HTTP/1.1\r\nHost: h\r\nX-Odd: 100%25 %0d%0a\r\nContent-Length: 3\r\n"
        "Connection: close\r\n\r\nabc");
    EXPECT_EQ(status_line(answer), "HTTP/1.1 200 OK");
    EXPECT_EQ(body(answer), "POST /a%20b?x=%41 100%25 %0d%0a[abc]");
    EXPECT_NE(answer.find("\r\nSet-Cookie: a=1\r\n"), std::string::npos) << answer;
    EXPECT_NE(answer.find("\r\nSet-Cookie: b=2\r\n"), std::string::npos) << answer;
    EXPECT_NE(answer.find("\r\nConnection: close\r\n"), std::string::npos) << answer;
}

TEST_F(HttpServerTest, ServesManyRequestsOnOneConnection) {
    HttpClient client(server_.port());
    for (int i = 0; i < 20; ++i) {
        const auto result = client.post("/" + std::to_string(i), "body", "text/plain");
        ASSERT_TRUE(result) << result.error();
        EXPECT_EQ(result->body, "POST /" + std::to_string(i) + " [body]");
    }
}

TEST_F(HttpServerTest, ServesRequestsThatCameAtOnceOneAfterTheOther) {
    const std::string two = said(
        "GET /1 HTTP/1.1\r\nHost: h\r\n\r\n"
        "GET /2 HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    EXPECT_NE(two.find("GET /1 []"), std::string::npos) << two;
    EXPECT_NE(two.find("GET /2 []"), std::string::npos) << two;
}

TEST_F(HttpServerTest, ReadsAFormOnlyOnceItIsWantedWhereTheClientAsks) {
    Wire wire(server_.port());
    wire.send(
        "POST /?a=/b?c=1 HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 3\r\n"
        "Connection: close\r\n\r\n");
    wire.send("abc");
    const std::string answer = wire.read_all();
    EXPECT_EQ(status_line(answer), "HTTP/1.1 100 Continue");
    EXPECT_NE(answer.find("\r\n\r\nHTTP/1.1 200 OK\r\n"), std::string::npos) << answer;
    EXPECT_NE(answer.find("POST /?a=/b?c=1 [abc]"), std::string::npos) << answer;
}

TEST_F(HttpServerTest, AnswersAHeadRequestWithoutABody) {
    const std::string answer = said("HEAD /x HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(status_line(answer), "HTTP/1.1 200 OK");
    EXPECT_EQ(body(answer), "");
}

TEST_F(HttpServerTest, RefusesWhatIsNoRequest) {
    struct Refused {
        std::string request;
        std::string_view status;
    };
    for (const auto& [request, status] : std::initializer_list<Refused>{
             {"\r\n\r\nGET\r\n\r\n", "HTTP/1.1 400 Bad Request"},
             {"nonsense\r\n\r\n", "HTTP/1.1 400 Bad Request"},
             {"GET / HTTP/1.1\r\n\r\n", "HTTP/1.1 400 Bad Request"},
             {"GET / HTTP/1.1\r\nHost: h\r\nbroken\r\n\r\n", "HTTP/1.1 400 Bad Request"},
             {"GET / HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n", "HTTP/1.1 400 Bad Request"},
             {"POST / HTTP/1.1\r\nHost: h\r\nContent-Length: x\r\n\r\n",
              "HTTP/1.1 400 Bad Request"},
             {"POST / HTTP/1.1\r\nHost: h\r\n\r\n", "HTTP/1.1 411 Length Required"},
             {"POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: gzip\r\n\r\n",
              "HTTP/1.1 501 Not Implemented"},
             {"POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n3e9\r\n",
              "HTTP/1.1 413 Payload Too Large"},
             {"POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\nx\r\n\r\n",
              "HTTP/1.1 400 Bad Request"},
             {"POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 1001\r\n\r\n" + std::string(1001, 'x'),
              "HTTP/1.1 413 Payload Too Large"},
             {"GET /" + std::string(10'000, 'x') + " HTTP/1.1\r\nHost: h\r\n\r\n",
              "HTTP/1.1 414 URI Too Long"},
             {"GET / HTTP/1.1\r\nHost: h\r\n" +
                  [] {
                      std::string headers;
                      for (int i = 0; i < 100; ++i) headers += "A: b\r\n";
                      return headers;
                  }() +
                  "\r\n",
              "HTTP/1.1 431 Request Header Fields Too Large"},
         }) {
        const std::string answer = said(request);
        EXPECT_EQ(status_line(answer), status) << request.substr(0, 60);
        EXPECT_EQ(answer.find("[", 1), std::string::npos) << "the handler saw it: " << answer;
    }
    EXPECT_EQ(status_line(said("GET / HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n")),
              "HTTP/1.1 200 OK")
        << "and serves on";
}

TEST_F(HttpServerTest, TakesNoHeadWithoutEnd) {
    std::string headers = "GET / HTTP/1.1\r\nHost: h\r\n";
    for (int i = 0; i < 4000; ++i) headers += "A" + std::to_string(i) + ": 0123456789\r\n";
    EXPECT_EQ(status_line(said(headers)), "HTTP/1.1 431 Request Header Fields Too Large");
}

TEST_F(HttpServerTest, DoesNotReadASecondRequestIntoTheBodyOfARefusedOne) {
    const std::string answer = said(
        "POST /first HTTP/1.1\r\nHost: h\r\nContent-Length: 4\r\nContent-Length: 5\r\n\r\n"
        "GET /smuggled HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(answer.find("smuggled"), std::string::npos) << answer;
}

TEST_F(HttpServerTest, ASlowClientLosesItsConnectionAndOthersAreServed) {
    const auto begin = std::chrono::steady_clock::now();
    Wire slow(server_.port()), silent(server_.port()), half(server_.port());
    slow.send("GET / HTTP/1.1\r\nHo");
    half.send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 10\r\n\r\nhalf");
    EXPECT_EQ(status_line(said("GET / HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n")),
              "HTTP/1.1 200 OK");
    EXPECT_EQ(slow.read_all(), "");
    EXPECT_EQ(status_line(half.read_all()), "HTTP/1.1 408 Request Timeout");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s);
}

TEST_F(HttpServerTest, IdleConnectionsGiveWayToThoseThatAsk) {
    std::vector<std::unique_ptr<Wire>> idle;
    for (int i = 0; i < 6; ++i) idle.push_back(std::make_unique<Wire>(server_.port()));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(status_line(said("GET / HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n")),
              "HTTP/1.1 200 OK");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 6s);
}

TEST_F(HttpServerTest, ReadsABodyInChunks) {
    const std::string answer = said(
        "POST /c HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: Chunked\r\nConnection: close\r\n\r\n"
        "3\r\nabc\r\n2;x=y\r\nde\r\n0\r\nLast: z\r\n\r\n");
    EXPECT_EQ(body(answer), "POST /c [abcde]");
}

TEST_F(HttpServerTest, KeepsAConnectionOfTheOlderVersionWhereThatIsAsked) {
    Wire wire(server_.port());
    wire.send("GET /1 HTTP/1.0\r\nConnection: keep-alive\r\n\r\n");
    const std::string first = wire.read_until("[]");
    EXPECT_NE(first.find("\r\nConnection: keep-alive\r\n"), std::string::npos) << first;
    EXPECT_EQ(body(wire.ask("GET /2 HTTP/1.0\r\n\r\n")), "GET /2 []");
}

TEST_F(HttpServerTest, ClosesWhereOneOfSeveralWordsAsksForIt) {
    const std::string answer = said("GET / HTTP/1.1\r\nHost: h\r\nConnection: close, TE\r\n\r\n");
    EXPECT_EQ(status_line(answer), "HTTP/1.1 200 OK");
    EXPECT_NE(answer.find("\r\nConnection: close\r\n"), std::string::npos) << answer;
}

TEST_F(HttpServerTest, AnswersAnAddressWithItsHost) {
    EXPECT_EQ(body(said("GET http://h/x?y HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n")),
              "GET /x?y []");
}

TEST_F(HttpServerTest, ReadsWhatFollowsARefusedRequestSoThatTheRefusalArrives) {
    Wire wire(server_.port());
    wire.send("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 3000000\r\n\r\n");
    EXPECT_EQ(status_line(wire.read_until("</html>\n")), "HTTP/1.1 413 Payload Too Large");
    // Without a reader, this client would be reset.
    for (int i = 0; i < 60; ++i) ASSERT_TRUE(wire.send(std::string(50'000, 'x'))) << i;
}

TEST(HttpServer, StopsBeforeItHasServedAnything) {
    for (int i = 0; i < 20; ++i) RunningServer server(quick(), echo);
}

TEST(HttpServer, SaysWhereItCannotListen) {
    const RunningServer first(quick(), echo);
    ServerOptions options = quick();
    options.address = "192.0.2.1";
    EXPECT_THROW(HttpServer(options, echo), std::runtime_error);
    options = quick();
    options.certificate = "/none/cert.pem";
    options.key = "/none/key.pem";
    try {
        HttpServer server(options, echo);
        FAIL();
    } catch (const std::runtime_error& failure) {
        EXPECT_EQ(std::string(failure.what()).substr(0, 48),
                  "/none/cert.pem: no certificate can be read: erro");
    }
}

TEST(HttpServer, ServesHttpsWithACertificate) {
    const ServerCertificate certificate;
    ServerOptions options = quick();
    options.certificate = certificate.file;
    options.key = certificate.key;
    std::atomic<bool> was_secure = false;
    const RunningServer server(options, [&](const HttpRequest& request) {
        was_secure = request.is_secure;
        HttpResponse response = echo(request);
        response.body += std::string(300'000, 'x');
        return response;
    });
    EXPECT_EQ(server.url().substr(0, 18), "https://127.0.0.1:");
    HttpClient client(server.port(), certificate.file);
    for (int i = 0; i < 3; ++i) {
        const auto result = client.post("/tls", std::string(900, 'y'), "text/plain");
        ASSERT_TRUE(result) << result.error();
        EXPECT_EQ(result->body.size(), 10 + 2 + 900 + 300'000u);
        EXPECT_EQ(result->get_header_value("Strict-Transport-Security"), "max-age=2592000");
    }
    EXPECT_TRUE(was_secure);
    EXPECT_EQ(Wire(server.port()).ask("GET / HTTP/1.1\r\nHost: h\r\n\r\n").find("HTTP/1.1 200"),
              std::string::npos)
        << "without TLS there is no answer";
}

TEST(RequestIds, AreTheServersOwnAndNewForEachRequest) {
    std::vector<std::string> ids;
    RunningServer server(quick(), [&](const HttpRequest& request) {
        ids.push_back(request.id);
        EXPECT_EQ(request.lane, Lane::page);
        return HttpResponse{};
    });
    HttpClient client(server.port());
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(client.get("/", {{"X-Request-Id", "somebody-elses"}}));
    ASSERT_EQ(ids.size(), 2u);
    EXPECT_TRUE(is_request_id(ids[0])) << ids[0];
    EXPECT_NE(ids[0], ids[1]);
    EXPECT_NE(ids[0], "somebody-elses");
}

TEST(RequestIds, AreGivenToRequestsThatAreRefusedToo) {
    std::string id;
    std::optional<Lane> lane = Lane::page;
    RunningServer server(quick(), echo,
                         {.refused = [&](const HttpRequest& request, HttpResponse&, auto) {
                             id = request.id;
                             lane = request.lane;
                         }});
    Wire(server.port()).ask("GET nonsense\r\n\r\n");
    EXPECT_TRUE(is_request_id(id)) << id;
    EXPECT_FALSE(lane);
}

TEST(ServerCounts, TellOfConnectionsThatAreThereAndThatWereRefused) {
    ServerOptions options = quick();
    options.most_of_one_address = 1;
    RunningServer server(options, echo);
    Wire one(server.port());
    while (server.counts().connections != 1) std::this_thread::yield();
    EXPECT_EQ(server.counts().refused_of_one_address, 0u);
    Wire(server.port()).read_all();
    EXPECT_EQ(server.counts().refused_of_one_address, 1u);
    EXPECT_EQ(server.counts().refused_in_all, 0u);
    EXPECT_EQ(server.counts().workers.workers, static_cast<std::size_t>(options.worker_count()));
}

}  // namespace
}  // namespace orvo::web
