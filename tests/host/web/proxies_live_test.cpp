// The server behind proxies: whom it takes for the client, and what it counts for him.

#include <gtest/gtest.h>

#include <semaphore>

#include "tests/host/web/echo_server.h"
#include "tests/host/web/proxy_octets.h"
#include "tests/host/web/server_certificate.h"
#include "tests/support/http_client.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

// "192.0.2.7:4711 https shop.example:443", and the names of headers that only proxies send.
HttpResponse who(const HttpRequest& request) {
    HttpResponse response;
    response.content_type = "text/plain";
    response.body = request.remote_address + ':' + std::to_string(request.remote_port) +
                    (request.is_secure ? " https " : " http ") +
                    std::string(request.header("Host")) + ':' + std::to_string(request.local_port);
    for (const auto& [name, value] : request.headers)
        if (name.find("orwarded") != name.npos) response.body += ' ' + name;
    return response;
}

ServerOptions behind(const char* proxy, bool begins_with_header = false) {
    ServerOptions options = quick();
    options.proxies.networks.try_add(proxy);
    options.proxies.begin_with_header = begins_with_header;
    return options;
}

std::string asked(const RunningServer& server, const std::string& headers,
                  const std::string& greeting = {}) {
    return Wire(server.port())
        .ask(greeting + "GET / HTTP/1.1\r\nHost: inner:81\r\nConnection: close\r\n" + headers +
             "\r\n");
}

const std::string from_client = "PROXY TCP4 192.0.2.7 10.0.0.1 4711 443\r\n";

TEST(Proxies, SpeakForTheirClientsWhereTheyAreTrusted) {
    const RunningServer server(behind("127.0.0.1"), who);
    EXPECT_EQ(body(asked(server,
                         "Forwarded: for=\"192.0.2.7:4711\";proto=https;host=shop.example"
                         "\r\n")),
              "192.0.2.7:4711 https shop.example:443");
    EXPECT_EQ(body(asked(server,
                         "X-Forwarded-For: 10.9.9.9, 192.0.2.7\r\n"
                         "X-Forwarded-Proto: https\r\n")),
              "192.0.2.7:0 https inner:81:81");
}

TEST(Proxies, SayNothingThatCountsWhereTheyAreNot) {
    const RunningServer server(behind("192.0.2.1"), who);
    const std::string answer = asked(
        server,
        "Forwarded: for=192.0.2.7;proto=https;host=evil.example\r\nX-Forwarded-For: 192.0.2.7\r\n"
        "X-Forwarded-Proto: https\r\nX-Forwarded-Host: evil.example\r\n");
    EXPECT_TRUE(body(answer).starts_with("127.0.0.1:")) << answer;
    EXPECT_TRUE(body(answer).ends_with(" http inner:81:" + std::to_string(server.port())))
        << answer;
    EXPECT_EQ(answer.find("Strict-Transport-Security"), std::string::npos);
}

TEST(Proxies, DecideWhetherBrowsersComeBackByTlsAlone) {
    const ServerCertificate certificate;
    ServerOptions options = behind("127.0.0.1");
    const RunningServer plain(options, who);
    EXPECT_NE(asked(plain, "X-Forwarded-Proto: https\r\n")
                  .find("\r\nStrict-Transport-Security: max-age=2592000\r\n"),
              std::string::npos);
    EXPECT_EQ(asked(plain, "X-Forwarded-Proto: http\r\n").find("Strict-Transport"),
              std::string::npos);
    options.certificate = certificate.file;
    options.key = certificate.key;
    const RunningServer server(options, who);
    HttpClient proxy(server.port(), certificate.file);
    const auto outside_plain = proxy.get("/", {{"X-Forwarded-Proto", "http"}});
    EXPECT_EQ(outside_plain->get_header_value("Strict-Transport-Security"), "");
    EXPECT_NE(outside_plain->body.find(" http "), std::string::npos);
    const auto not_said = proxy.get("/");
    EXPECT_NE(not_said->get_header_value("Strict-Transport-Security"), "");
    EXPECT_NE(not_said->body.find(" https "), std::string::npos);
}

TEST(Proxies, AreRefusedWhatCannotBeReadAndTheirClientsAreNamedInTheLog) {
    std::vector<std::string> refused;
    {
        RunningServer server(
            behind("127.0.0.1"), who,
            {.refused = [&](const HttpRequest& request, HttpResponse& response, auto) {
                refused.push_back(request.remote_address + ' ' + std::to_string(response.status));
            }});
        const std::string answer = asked(server, "X-Forwarded-For: whoever\r\n");
        EXPECT_EQ(status_line(answer), "HTTP/1.1 400 Bad Request");
        EXPECT_NE(answer.find("What a proxy says of the client cannot be read."), std::string::npos)
            << answer;
        EXPECT_EQ(status_line(asked(server, "X-Forwarded-For: 192.0.2.7\r\nContent-Length: x\r\n")),
                  "HTTP/1.1 400 Bad Request");
    }
    EXPECT_EQ(refused, (std::vector<std::string>{"127.0.0.1 400", "192.0.2.7 400"}));
}

TEST(Proxies, BeginTheirConnectionsWithAHeader) {
    const RunningServer server(behind("127.0.0.1", true), who);
    EXPECT_EQ(body(asked(server, "", from_client)), "192.0.2.7:4711 http inner:81:443");
    EXPECT_EQ(body(asked(server, "", proxy_octets(0x21, 0x11, v4_ends))),
              "192.0.2.7:4711 http inner:81:443");
    EXPECT_EQ(asked(server, "", proxy_octets(0x21, 0x21, v6_ends + proxy_part(0x20, "\x01"))), "")
        << "a part that is cut off";
    EXPECT_EQ(body(asked(server, "",
                         proxy_octets(0x21, 0x21,
                                      v6_ends + proxy_part(0x20, std::string("\x01\0\0\0\0", 5))))),
              "2001:db8::7:4711 https inner:81:443");
    for (const std::string& header :
         {std::string("PROXY UNKNOWN\r\n"), proxy_octets(0x20, 0, ""), proxy_octets(0x21, 0, "")}) {
        const std::string of_nobody = body(
            asked(server, "X-Forwarded-For: 192.0.2.9\r\nX-Forwarded-Proto: https\r\n", header));
        EXPECT_TRUE(of_nobody.starts_with("127.0.0.1:")) << of_nobody;
        EXPECT_TRUE(of_nobody.ends_with(" http inner:81:" + std::to_string(server.port())))
            << "the client of whom the proxy knows nothing says it: " << of_nobody;
    }
    EXPECT_EQ(body(asked(server, "X-Forwarded-For: 198.51.100.1\r\nX-Forwarded-Proto: https\r\n",
                         from_client)),
              "192.0.2.7:4711 http inner:81:443")
        << "such headers are the client's own";
    EXPECT_EQ(body(asked(server, "X-Forwarded-For: 198.51.100.1\r\n",
                         "PROXY TCP4 127.0.0.1 10.0.0.1 4711 443\r\n")),
              "198.51.100.1:0 http inner:81:81")
        << "unless that is a trusted proxy, too";
}

TEST(Proxies, MaySendTheirHeaderInPieces) {
    const RunningServer server(behind("127.0.0.1", true), who);
    for (const std::string& header : {from_client, proxy_octets(0x21, 0x11, v4_ends)}) {
        Wire wire(server.port());
        const std::string all =
            header + "GET / HTTP/1.1\r\nHost: h\r\n\r\nGET / HTTP/1.1\r\nHost: h\r\n\r\n";
        for (const char c : all) wire.send({&c, 1});
        for (int i = 0; i < 2; ++i)
            EXPECT_TRUE(wire.read_until("h:443").ends_with("192.0.2.7:4711 http h:443"));
    }
}

TEST(Proxies, SendTheirHeaderInFrontOfTls) {
    const ServerCertificate certificate;
    ServerOptions options = behind("127.0.0.1", true);
    options.certificate = certificate.file;
    options.key = certificate.key;
    const RunningServer server(options, who);
    for (const std::string& header : {from_client, proxy_octets(0x21, 0x11, v4_ends)}) {
        HttpClient client(server.port(), certificate.file, 60, header);
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(client.get("/")->body, "192.0.2.7:4711 https 127.0.0.1:443");
    }
    EXPECT_EQ(Wire(server.port()).ask("\x16\x03\x01\x02"), "") << "without one";
}

TEST(Proxies, AreNotServedWithoutTheHeaderAndOthersAreNotServedWithIt) {
    std::vector<std::string> said;
    {
        RunningServer server(behind("127.0.0.1", true), who,
                             {.trouble = [&](const std::string& s) { said.push_back(s); }});
        EXPECT_EQ(asked(server, ""), "");
        EXPECT_EQ(asked(server, "", "PROXY TCP4 whoever\r\n"), "");
        Wire(server.port());  // one that looks whether anybody is there
    }
    EXPECT_EQ(said,
              (std::vector<std::string>{"1 connection refused: 127.0.0.1 sent no PROXY header"}));
    const RunningServer other(behind("192.0.2.1", true), who);
    EXPECT_TRUE(body(asked(other, "")).starts_with("127.0.0.1:"));
    EXPECT_EQ(status_line(asked(other, "", from_client)), "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(status_line(asked(other, "", proxy_octets(0x21, 0x11, v4_ends))),
              "HTTP/1.1 400 Bad Request");
}

TEST(Proxies, HaveToSendTheirHeaderInTime) {
    ServerOptions options = behind("127.0.0.1", true);
    options.greeting_time = 100ms;
    const RunningServer server(options, who);
    for (const char* begin : {"", "PROXY TCP4 192.0.2.7 ", "\r\n\r\n"}) {
        Wire wire(server.port());
        wire.send(begin);
        EXPECT_EQ(wire.read_all(), "");
    }
}

// Handlers wait in it until a test lets them go on.
struct Gate {
    HttpResponse pass(const HttpRequest& request) {
        entered.release();
        open.acquire();
        return who(request);
    }

    std::counting_semaphore<> entered{0}, open{0};
};

TEST(Proxies, CountForTheirClientsOfWhomEachMayHaveItsConnections) {
    ServerOptions options = behind("127.0.0.1", true);
    options.most_of_one_address = 1;
    const RunningServer server(options, who);
    Wire first(server.port()), own(server.port()), own_too(server.port());
    const std::string end = " http h:" + std::to_string(server.port());
    for (Wire* wire : {&own, &own_too}) {
        wire->send("PROXY UNKNOWN\r\n" + get("/"));
        EXPECT_TRUE(wire->read_until(end).ends_with(end)) << "its own connections do not count";
    }
    first.send(from_client + get("/"));
    EXPECT_FALSE(first.read_until("h:443").empty());
    EXPECT_EQ(asked(server, "", from_client), "");
    EXPECT_NE(asked(server, "", "PROXY TCP4 192.0.2.8 10.0.0.1 4711 443\r\n"), "");
    first.send("GET / HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    EXPECT_FALSE(first.read_all().empty()) << "who is in stays";
}

TEST(Proxies, CountForTheClientWhoseRequestTheyPassOn) {
    Gate gate;
    ServerOptions options = behind("127.0.0.1");
    options.most_of_one_address = 1;
    const RunningServer server(options, [&](const HttpRequest& request) {
        return request.target == "/wait" ? gate.pass(request) : who(request);
    });
    const std::string client = "Host: h\r\nX-Forwarded-For: 192.0.2.7\r\n\r\n";
    Wire first(server.port()), second(server.port());
    first.send("GET /wait HTTP/1.1\r\n" + client);
    gate.entered.acquire();
    second.send("GET / HTTP/1.1\r\n" + client);
    const std::string refused = second.read_until("</html>\n");
    EXPECT_EQ(status_line(refused), "HTTP/1.1 503 Service Unavailable");
    EXPECT_NE(refused.find("There are too many requests from your address."), std::string::npos);
    second.send("GET / HTTP/1.1\r\nHost: h\r\nX-Forwarded-For: 192.0.2.8\r\n\r\n");
    EXPECT_TRUE(second.read_until("h:80").ends_with("192.0.2.8:0 http h:80"));
    gate.open.release();
    EXPECT_TRUE(first.read_until("h:80").ends_with("192.0.2.7:0 http h:80"));
    second.send("GET / HTTP/1.1\r\n" + client);
    EXPECT_TRUE(second.read_until("h:80").ends_with("192.0.2.7:0 http h:80"));
}

TEST(Proxies, NameRequestsWhereTheyAreTrustedAndTheNameIsAGoodOne) {
    const auto id = [](const HttpRequest& request) { return HttpResponse{.body = request.id}; };
    const RunningServer trusting(behind("127.0.0.1"), id), other(behind("192.0.2.1"), id),
        greeted(behind("127.0.0.1", true), id);
    EXPECT_EQ(body(asked(trusting, "X-Request-Id: 7f3c-1\r\n")), "7f3c-1");
    EXPECT_EQ(body(asked(trusting, "X-Request-Id: theirs\r\nx-request-id: the-proxys\r\n")),
              "the-proxys")
        << "what the browser has made up stands in front of it";
    for (const std::string& bad : {std::string("two words"), std::string("a\"b"), std::string(),
                                   std::string(65, 'a'), std::string("7f3c-1, 7f3c-2")})
        EXPECT_EQ(body(asked(trusting, "X-Request-Id: " + bad + "\r\n")).size(), 16u) << bad;
    EXPECT_EQ(body(asked(trusting, "")).size(), 16u);
    EXPECT_EQ(body(asked(other, "X-Request-Id: 7f3c-1\r\n")).size(), 16u);
    for (const std::string& header : {from_client, std::string("PROXY UNKNOWN\r\n")})
        EXPECT_EQ(body(asked(greeted, "X-Request-Id: 7f3c-1\r\n", header)).size(), 16u)
            << "the proxy's header does not say who has sent it";
}

}  // namespace
}  // namespace orvo::web
