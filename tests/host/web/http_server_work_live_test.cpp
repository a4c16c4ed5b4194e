// How the server has its requests answered: in pieces, from files, by which threads, until it
// stops.

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>
#include <thread>

#include "tests/host/web/echo_server.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

// The server's handler waits here until a test lets it go on.
class Gate {
public:
    void pass() {
        entered_.release();
        open_.acquire();
    }
    // Until a handler has come.
    void wait() { entered_.acquire(); }
    void open(int handlers = 1) { open_.release(handlers); }

private:
    std::counting_semaphore<> entered_{0}, open_{0};
};

TEST(HttpServer, SaysAgainAndAgainThatItsEventThreadIsAlive) {
    std::counting_semaphore<> beats{0};
    RunningServer server(quick(), [](const HttpRequest&) { return HttpResponse{}; },
                         {.alive = [&] { beats.release(); }, .alive_each = 1ms});
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(beats.try_acquire_for(30s));
}

TEST(HttpServer, SendsAnAnswerInPiecesBeforeItsHandlerEnds) {
    Gate gate;
    RunningServer server(quick(), [&](const HttpRequest& request) {
        HttpResponse head;
        head.content_type = "text/plain";
        head.headers = {{"X-Own", "1"}};
        request.stream->begin(head);
        request.stream->send("first");
        gate.pass();
        EXPECT_TRUE(request.stream->is_connected());
        request.stream->send("second");
        EXPECT_EQ(request.stream->length(), 11u);
        gate.pass();
        return HttpResponse{.status = 500, .body = "last"};
    });
    Wire wire(server.port());
    for (int i = 0; i < 2; ++i) {
        wire.send(get("/"));
        const std::string head = wire.read_until("\r\n\r\n");
        EXPECT_EQ(status_line(head), "HTTP/1.1 200 OK");
        EXPECT_NE(head.find("\r\nX-Own: 1\r\nTransfer-Encoding: chunked\r\n\r\n"),
                  std::string::npos)
            << head;
        EXPECT_EQ(wire.read_until("first\r\n"), "5\r\nfirst\r\n");
        gate.open();
        EXPECT_EQ(wire.read_until("second\r\n"), "6\r\nsecond\r\n");
        gate.open();
        EXPECT_EQ(wire.read_until("0\r\n\r\n"), "4\r\nlast\r\n0\r\n\r\n");
    }
    gate.open(4);
    const std::string old = Wire(server.port()).ask(get("/", "1.0"));
    EXPECT_EQ(body(old), "firstsecondlast");
    EXPECT_NE(old.find("\r\nConnection: close\r\n"), std::string::npos) << old;
    const std::string head =
        Wire(server.port()).ask("HEAD / HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(status_line(head), "HTTP/1.1 200 OK");
    EXPECT_EQ(body(head), "");
}

TEST(HttpServer, AHandlerLearnsThatItsBrowserHasGone) {
    Gate gate;
    std::atomic<bool> has_learned = false;
    {
        RunningServer server(quick(), [&](const HttpRequest& request) {
            request.stream->begin({});
            gate.pass();
            while (request.stream->is_connected()) std::this_thread::yield();
            has_learned = true;
            request.stream->send("to nobody");
            return HttpResponse{};
        });
        {
            Wire wire(server.port());
            wire.send(get("/"));
            gate.wait();
        }
        gate.open();
    }
    EXPECT_TRUE(has_learned);
}

TEST(HttpServer, SendsAStretchOfAFile) {
    TempFolder folder;
    std::string content(300'000, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>('a' + i % 23);
    const auto file = OpenFile::try_open(folder.write("file", content));
    RunningServer server(quick(), [&](const HttpRequest& request) {
        HttpResponse response;
        const std::uint64_t offset = request.target == "/part" ? 1000 : 0;
        response.file = FilePart{file, offset, request.target == "/part" ? 70'000 : content.size()};
        if (request.target == "/cut") response.file->length += 1;
        return response;
    });
    Wire wire(server.port());
    wire.send(get("/whole"));
    EXPECT_NE(wire.read_until("\r\n\r\n").find("\r\nContent-Length: 300000\r\n"),
              std::string::npos);
    EXPECT_TRUE(wire.read(content.size()) == content);
    wire.send(get("/part"));
    wire.read_until("\r\n\r\n");
    EXPECT_TRUE(wire.read(70'000) == content.substr(1000, 70'000));
    EXPECT_TRUE(body(wire.ask(get("/cut"))) == content) << "and the connection is closed";
}

TEST(HttpServer, GivesUpTheLargestAnswersThatNobodyTakesAndServesTheOthers) {
    constexpr std::size_t large = 4 * 1024 * 1024;
    ServerOptions options = quick();
    options.most_unsent = 3 * large;
    std::counting_semaphore<> given_up{0};
    RunningServer server(
        options,
        [](const HttpRequest& request) {
            return HttpResponse{.body = std::string(request.target == "/large" ? large : 5, 'x')};
        },
        {.trouble = [&](const std::string& sentence) {
            EXPECT_TRUE(sentence.starts_with("an answer that was not taken is given up: "));
            given_up.release();
        }});
    std::vector<std::unique_ptr<Wire>> greedy;
    for (int i = 0; i < 8; ++i) {
        greedy.push_back(std::make_unique<Wire>(server.port()));
        greedy.back()->send(get("/large"));
    }
    for (int i = 0; i < 5; ++i) ASSERT_TRUE(given_up.try_acquire_for(60s));
    Wire wire(server.port());
    wire.send(get("/"));
    EXPECT_EQ(status_line(wire.read_until("xxxxx")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, KeepsAnUploadOnDiskAndRefusesOneThatIsTooLarge) {
    ServerOptions options = quick();
    options.largest_upload = 1'000'000;
    RunningServer server(options, [&](const HttpRequest& request) {
        const std::string all = request.body.text();
        return HttpResponse{.body = std::to_string(all.size()) + all.substr(all.size() - 3)};
    });
    const std::string head =
        "POST / HTTP/1.1\r\nHost: h\r\nContent-Type: multipart/form-data; boundary=b\r\n"
        "Connection: close\r\n";
    const std::string sent = std::string(999'997, 'x') + "end";
    EXPECT_EQ(body(Wire(server.port()).ask(head + "Content-Length: 1000000\r\n\r\n" + sent)),
              "1000000end");
    EXPECT_EQ(status_line(Wire(server.port()).ask(head + "Content-Length: 1000001\r\n\r\n")),
              "HTTP/1.1 413 Payload Too Large");
    EXPECT_EQ(
        status_line(
            Wire(server.port()).ask("POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 1001\r\n\r\n")),
        "HTTP/1.1 413 Payload Too Large")
        << "of other forms";
}

TEST(HttpServer, TellsOfWhatItRefuses) {
    std::vector<std::string> refused;
    {
        RunningServer server(
            quick(), echo,
            {.refused = [&](const HttpRequest& request, HttpResponse& response, auto duration) {
                EXPECT_GE(duration.count(), 0);
                refused.push_back(request.remote_address + ' ' + request.method + ' ' +
                                  request.target + ' ' + std::to_string(response.status));
                response.headers.emplace_back("X-Hook", "1");
            }});
        EXPECT_NE(Wire(server.port()).ask("nonsense\r\n\r\n").find("\r\nX-Hook: 1\r\n"),
                  std::string::npos);
        Wire(server.port()).ask("POST /form HTTP/1.1\r\nHost: h\r\n\r\n");
    }
    EXPECT_EQ(refused, (std::vector<std::string>{"127.0.0.1 - - 400", "127.0.0.1 POST /form 411"}));
}

// What is asked of `path` while handlers of "/wait" wait.
Lane lane_of_path(const HttpRequest& request) {
    if (request.target == "/at-once") return Lane::at_once;
    if (request.target == "/aside") return Lane::aside;
    return request.target == "/wait" ? Lane::directory : Lane::page;
}

TEST(HttpServer, WhatWaitsForTheDirectoryHoldsAShareOfTheWorkersAlone) {
    Gate gate;
    ServerOptions options = quick();
    options.workers = 4;
    options.directory_share = 50;
    options.most_waiting = 3;
    RunningServer server(options,
                         [&](const HttpRequest& request) {
                             if (request.target == "/wait") gate.pass();
                             return echo(request);
                         },
                         {.lane = lane_of_path});
    std::vector<std::unique_ptr<Wire>> waiting;
    const auto ask = [&] {
        waiting.push_back(std::make_unique<Wire>(server.port()));
        waiting.back()->send("GET /wait HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    };
    for (int i = 0; i < 2; ++i) ask(), gate.wait();
    for (int i = 0; i < 4; ++i) ask();
    const std::string refused = waiting.back()->read_until("\r\n\r\n");
    EXPECT_EQ(status_line(refused), "HTTP/1.1 503 Service Unavailable");
    EXPECT_NE(refused.find("\r\nRetry-After: 5\r\n"), std::string::npos) << refused;
    waiting.pop_back();
    Wire other(server.port());
    for (const std::string path : {"/page", "/at-once", "/aside"}) {
        other.send(get(path));
        EXPECT_NE(other.read_until("[]").find("GET " + path), std::string::npos);
    }
    gate.open(5);
    for (const auto& wire : waiting) EXPECT_EQ(body(wire->read_all()), "GET /wait []");
}

TEST(HttpServer, LetsInAsManyConnectionsAsItMay) {
    std::vector<std::string> sentences;
    {
        ServerOptions options = quick();
        options.most_of_one_address = 2;
        RunningServer server(options, echo, {.trouble = [&](const std::string& said) {
                                 sentences.push_back(said);
                             }});
        Wire first(server.port()), second(server.port());
        for (Wire* wire : {&first, &second}) {
            wire->send(get("/"));
            EXPECT_EQ(body(wire->read_until("[]")), "GET / []");
        }
        EXPECT_EQ(status_line(Wire(server.port()).read_all()), "HTTP/1.1 503 Service Unavailable");
        first.send(get("/"));
        EXPECT_EQ(body(first.read_until("[]")), "GET / []") << "who is in stays";
    }
    EXPECT_EQ(sentences, (std::vector<std::string>{"1 connection refused: 127.0.0.1 has 2"}));
}

TEST(HttpServer, ClosesWhatIsIdleWhenItStopsAndAnswersWhatRuns) {
    Gate gate;
    ServerOptions options = quick();
    options.idle_time = 1h;
    RunningServer server(options, [&](const HttpRequest& request) {
        gate.pass();
        return echo(request);
    });
    Wire idle(server.port()), running(server.port());
    running.send(get("/last"));
    gate.wait();
    server.stop();
    EXPECT_EQ(idle.read_all(), "");
    gate.open();
    const std::string answer = running.read_all();
    EXPECT_EQ(body(answer), "GET /last []");
    EXPECT_NE(answer.find("\r\nConnection: close\r\n"), std::string::npos) << answer;
    EXPECT_TRUE(server.was_all_answered());
}

TEST(HttpServer, ClosesARequestWithoutAWholeHeadWhenItStops) {
    ServerOptions options = quick();
    options.idle_time = options.request_time = options.drain_time = 1h;
    RunningServer server(options, echo);
    Wire wire(server.port());
    wire.send(get("/first") + "GET /second HT");
    EXPECT_EQ(body(wire.read_until("[]")), "GET /first []");
    server.stop();
    EXPECT_EQ(wire.read_all(), "");
    server.stop();  // where the time for what runs is waited for, it ends now
    EXPECT_TRUE(server.was_all_answered());
}

TEST(HttpServer, EndsAtOnceWhenItIsStoppedTwiceOrTheTimeIsOver) {
    for (const bool is_stopped_twice : {true, false}) {
        Gate gate;
        ServerOptions options = quick();
        options.drain_time = is_stopped_twice ? 1h : 1ms;
        RunningServer server(options, [&](const HttpRequest& request) {
            gate.pass();
            return echo(request);
        });
        Wire wire(server.port());
        wire.send(get("/"));
        gate.wait();
        server.stop();
        if (is_stopped_twice) server.stop();
        EXPECT_EQ(wire.read_all(), "");
        EXPECT_FALSE(server.was_all_answered());
        gate.open();
    }
}

TEST(HttpServer, FinishesWhatItServesBeforeItStops) {
    Gate gate;
    auto server = std::make_unique<RunningServer>(quick(), [&](const HttpRequest& request) {
        gate.pass();
        return echo(request);
    });
    Wire wire(server->port());
    wire.send("GET /last HTTP/1.1\r\nHost: h\r\n\r\n");
    gate.wait();
    const int port = server->port();
    server->stop();
    gate.open();
    EXPECT_EQ(body(wire.read_all()), "GET /last []");
    server.reset();
    EXPECT_THROW(Wire{port}, std::runtime_error);
}

}  // namespace
}  // namespace orvo::web
