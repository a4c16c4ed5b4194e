// Clients that keep a server waiting, many at once and of every kind: the others notice nothing.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/host/web/echo_server.h"
#include "tests/host/web/server_certificate.h"
#include "tests/support/http_client.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Nothing ends a connection but the clients themselves.
ServerOptions patient() {
    ServerOptions options;
    options.workers = 2;
    options.greeting_time = options.request_time = options.answer_time = options.idle_time = 1h;
    return options;
}

class SlowClients : public testing::TestWithParam<int> {
protected:
    HttpResponse answer(const HttpRequest& request) const {
        HttpResponse response = echo(request);
        if (request.target == "/large") response.file = FilePart{large_, 0, large_->size()};
        return response;
    }
    static Lane lane(const HttpRequest& request) {
        return request.target == "/health/live" ? Lane::at_once : Lane::page;
    }
    std::unique_ptr<RunningServer> serve(ServerOptions options) const {
        return std::make_unique<RunningServer>(
            std::move(options), [this](const HttpRequest& request) { return answer(request); },
            ServerHooks{.lane = lane});
    }
    ServerOptions with_tls() const {
        ServerOptions options = patient();
        options.certificate = certificate_.file;
        options.key = certificate_.key;
        return options;
    }

    // As many of each kind as the parameter says.
    void come() {
        for (int i = 0; i < GetParam(); ++i) {
            say(plain_->port(), "GET / HTTP/1.1\r\nHost: h\r\nCook");
            say(plain_->port(), "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 10\r\n\r\nhalf");
            say(plain_->port(), "GET /large HTTP/1.1\r\nHost: h\r\n\r\n");
            dripping_.push_back(say(plain_->port(), "GET / HTTP/1.1\r\nHost: h\r\nX: "));
            say(tls_->port(), "");
        }
    }
    void drip() {
        for (Wire* wire : dripping_) wire->send("x");
    }
    Wire* say(int port, std::string_view bytes) {
        // What is sent to it does not fit into the buffers between.
        slow_.push_back(std::make_unique<Wire>(port, 4096));
        slow_.back()->send(bytes);
        return slow_.back().get();
    }

    static Clock::duration time_of(HttpClient& client, const std::string& target) {
        const auto begin = Clock::now();
        const HttpResult result = client.get(target);
        EXPECT_EQ(result ? result->body : result.error(), "GET " + target + " []");
        return Clock::now() - begin;
    }

    const TempFolder folder_;
    const std::shared_ptr<const OpenFile> large_ =
        OpenFile::try_open(folder_.write("large", std::string(8'000'000, 'x')));
    const ServerCertificate certificate_;
    const std::unique_ptr<RunningServer> plain_ = serve(patient());
    const std::unique_ptr<RunningServer> tls_ = serve(with_tls());
    std::vector<std::unique_ptr<Wire>> slow_;
    std::vector<Wire*> dripping_;
};

TEST_P(SlowClients, KeepNobodyElseWaiting) {
    come();
    Clock::duration health{}, page{};
    for (int i = 0; i < 5; ++i) {
        drip();
        for (const bool is_secure : {false, true}) {
            HttpClient client(is_secure ? tls_->port() : plain_->port(),
                              is_secure ? certificate_.file : "");
            page = std::max(page, time_of(client, "/page"));
            health = std::max(health, time_of(client, "/health/live"));
        }
    }
    // Mostly a millisecond or two. The machine may be busy, but the slow ones stay for an hour.
    EXPECT_LT(health, 2s);
    EXPECT_LT(page, 5s);
    const auto milliseconds = [](Clock::duration time) {
        return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
    };
    RecordProperty("health_ms", milliseconds(health));
    RecordProperty("page_ms", milliseconds(page));
    for (Wire* wire : dripping_) {
        wire->send("\r\n\r\n");
        EXPECT_EQ(body(wire->read_until("[]")), "GET / []") << "and those are served in the end";
    }
    plain_->stop();
    tls_->stop();
    // A second word, as some of them would never end.
    plain_->stop();
    tls_->stop();
    EXPECT_FALSE(plain_->was_all_answered());
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, SlowClients, testing::Values(64, 200));

}  // namespace
}  // namespace orvo::web
