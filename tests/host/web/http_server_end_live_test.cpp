// What balancers and administrators have of the server: its end in two steps, and the address for
// those who run it.

#include <gtest/gtest.h>

#include <semaphore>

#include "host/web/administration/administration_pages.h"
#include "tests/host/web/echo_server.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

TEST(HttpServer, GoesOnForAWhileWhenItIsStoppedAndEndsEachConnectionItAnswers) {
    ServerOptions options = quick();
    options.idle_time = 1h;
    options.drain_delay = 1h;
    RunningServer server(options, echo);
    Wire kept(server.port()), idle(server.port());
    kept.send(get("/before"));
    EXPECT_EQ(kept.read_until("\r\n\r\n").find("Connection: close"), std::string::npos);
    EXPECT_EQ(kept.read_until("[]"), "GET /before []");
    server.stop();
    kept.send(get("/kept") + get("/behind"));
    const std::string last = kept.read_all();
    EXPECT_EQ(body(last), "GET /kept []") << "what was sent behind it goes to another server";
    EXPECT_NE(last.find("\r\nConnection: close\r\n"), std::string::npos) << last;
    Wire fresh(server.port());
    fresh.send(get("/new"));
    const std::string answer = fresh.read_all();
    EXPECT_EQ(body(answer), "GET /new []");
    EXPECT_NE(answer.find("\r\nConnection: close\r\n"), std::string::npos) << answer;
    server.stop();
    EXPECT_EQ(idle.read_all(), "") << "asked a second time, it ends at once";
}

TEST(HttpServer, StopsListeningWhenThatWhileIsOverAndAnswersWhatRuns) {
    std::counting_semaphore<> entered{0}, open{0};
    ServerOptions options = quick();
    options.idle_time = 1h;
    options.drain_delay = 50ms;
    auto server = std::make_unique<RunningServer>(options, [&](const HttpRequest& request) {
        entered.release();
        open.acquire();
        return echo(request);
    });
    const int port = server->port();
    Wire idle(port), running(port);
    running.send(get("/last"));
    entered.acquire();
    server->stop();
    EXPECT_EQ(idle.read_all(), "");
    EXPECT_THROW(Wire{port}, std::runtime_error) << "what is idle is closed after the listener";
    open.release();
    EXPECT_EQ(body(running.read_all()), "GET /last []");
    EXPECT_TRUE(server->was_all_answered());
}

TEST(HttpServer, AnswersAFormOfWhichHalfHasComeWhenItStops) {
    ServerOptions options = quick();
    options.request_time = 1h;
    RunningServer server(options, echo);
    Wire wire(server.port()), idle(server.port());
    wire.send(
        "POST /form HTTP/1.1\r\nHost: h\r\nContent-Length: 4\r\nExpect: 100-continue\r\n\r\n");
    EXPECT_EQ(wire.read_until("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
    wire.send("ha");
    server.stop();
    EXPECT_EQ(idle.read_all(), "");
    wire.send("lf");
    const std::string answer = wire.read_all();
    EXPECT_EQ(body(answer), "POST /form [half]");
    EXPECT_NE(answer.find("\r\nConnection: close\r\n"), std::string::npos) << answer;
    EXPECT_TRUE(server.was_all_answered());
}

class AdministrationTest : public testing::Test {
protected:
    AdministrationTest() {
        pages_.add("/health/live", Lane::at_once, text("alive"));
        pages_.add("/health/ready", Lane::aside, text("ready"));
        pages_.add("/metrics", Lane::page, text("figures"));
        pages_.add("/broken", Lane::page, [](const HttpRequest&) -> HttpResponse {
            throw std::runtime_error("no figures");
        });
    }
    static AdministrationPages::Page text(const char* body) {
        return [body](const HttpRequest&) {
            return HttpResponse{.content_type = "text/plain", .body = body};
        };
    }
    Administration administration() {
        return {.address = *SocketAddress::try_read("127.0.0.1:0"),
                .handler = [this](const HttpRequest& r) { return pages_.answer(r); },
                .lane = [this](const HttpRequest& r) { return pages_.lane_of(r); }};
    }
    static std::string asked(const RunningServer& server, const std::string& path,
                             const std::string& method = "GET") {
        return Wire(server.administration_port())
            .ask(method + ' ' + path + " HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    }

    AdministrationPages pages_;
};

TEST_F(AdministrationTest, AnswersItsPagesAndNothingElse) {
    const RunningServer server(quick(), echo, {}, administration());
    ASSERT_NE(server.administration_port(), server.port());
    EXPECT_EQ(body(asked(server, "/health/live")), "alive");
    EXPECT_EQ(body(asked(server, "/health/ready")), "ready");
    EXPECT_EQ(body(asked(server, "/metrics?x=1")), "figures");
    EXPECT_EQ(body(asked(server, "/metrics", "HEAD")), "");
    EXPECT_EQ(status_line(asked(server, "/")), "HTTP/1.1 404 Not Found");
    EXPECT_EQ(status_line(asked(server, "/metrics/")), "HTTP/1.1 404 Not Found");
    const std::string other = asked(server, "/metrics", "DELETE");
    EXPECT_EQ(status_line(other), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_NE(other.find("\r\nAllow: GET, HEAD\r\n"), std::string::npos) << other;
    EXPECT_EQ(status_line(Wire(server.administration_port())
                              .ask("POST /metrics HTTP/1.1\r\nHost: h\r\nContent-Length: 1\r\n"
                                   "\r\nx")),
              "HTTP/1.1 413 Payload Too Large");
    const std::string broken = asked(server, "/broken");
    EXPECT_EQ(status_line(broken), "HTTP/1.1 500 Internal Server Error");
    EXPECT_EQ(body(broken), "no figures\n");
    EXPECT_EQ(body(Wire(server.port())
                       .ask("GET /metrics HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n")),
              "GET /metrics []")
        << "the site's address is the site's";
}

TEST_F(AdministrationTest, IsAnsweredWhileAllWorkersAreBusyAndUntilTheEnd) {
    std::counting_semaphore<> entered{0}, open{0};
    RunningServer server(
        quick(),
        [&](const HttpRequest& request) {
            entered.release();
            open.acquire();
            return echo(request);
        },
        {}, administration());
    std::vector<std::unique_ptr<Wire>> busy;
    for (int i = 0; i < 6; ++i) {
        busy.push_back(std::make_unique<Wire>(server.port()));
        busy.back()->send(get("/"));
    }
    for (int i = 0; i < 2; ++i) entered.acquire();
    const auto expect_answers = [&] {
        for (const char* path : {"/health/live", "/health/ready", "/metrics"})
            EXPECT_EQ(status_line(asked(server, path)), "HTTP/1.1 200 OK") << path;
    };
    expect_answers();
    server.stop();
    expect_answers();
    open.release(6);
    for (const auto& wire : busy) EXPECT_EQ(body(wire->read_until("[]")), "GET / []");
    EXPECT_TRUE(server.was_all_answered());
}

TEST_F(AdministrationTest, APageThatWaitsKeepsNoOtherWaiting) {
    std::counting_semaphore<> open{0}, entered{0};
    pages_.add("/health/ready", Lane::aside, [&](const HttpRequest&) {
        entered.release();
        open.acquire();
        return HttpResponse{};
    });
    const RunningServer server(quick(), echo, {}, administration());
    Wire waiting(server.administration_port());
    waiting.send("GET /health/ready HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    entered.acquire();
    EXPECT_EQ(body(asked(server, "/metrics")), "figures");
    EXPECT_EQ(body(asked(server, "/health/live")), "alive");
    open.release();
    EXPECT_EQ(status_line(waiting.read_all()), "HTTP/1.1 200 OK");
}

TEST_F(AdministrationTest, HasFiftyConnectionsWhichAreNotTheSites) {
    const RunningServer server(quick(), echo, {}, administration());
    std::vector<std::unique_ptr<Wire>> held;
    for (int i = 0; i < 50; ++i)
        held.push_back(std::make_unique<Wire>(server.administration_port()));
    EXPECT_EQ(status_line(Wire(server.administration_port()).read_all()),
              "HTTP/1.1 503 Service Unavailable");
    EXPECT_EQ(server.counts().connections, 0u);
    Wire site(server.port());
    site.send(get("/"));
    EXPECT_EQ(body(site.read_until("[]")), "GET / []");
    held.back()->send("GET /metrics HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(body(held.back()->read_all()), "figures") << "who is in is answered";
    held.clear();
    std::string answer;
    while (answer.empty() || status_line(answer) == "HTTP/1.1 503 Service Unavailable")
        answer = asked(server, "/metrics");
    EXPECT_EQ(body(answer), "figures");
}

TEST_F(AdministrationTest, SaysWhereItCannotListen) {
    const RunningServer first(quick(), echo);
    Administration taken = administration();
    taken.address.port = first.port();
    try {
        HttpServer second(quick(), echo, {}, taken);
        FAIL();
    } catch (const std::runtime_error& failure) {
        EXPECT_EQ(std::string(failure.what()),
                  "127.0.0.1:" + std::to_string(first.port()) +
                      ": the address cannot be listened on: Address already in use");
    }
}

}  // namespace
}  // namespace orvo::web
