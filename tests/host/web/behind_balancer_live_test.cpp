// The program behind a balancer: whom it takes for the client, how it leaves, and a restart of one
// node after the other behind haproxy.

#include <atomic>
#include <csignal>

#include "tests/host/web/orvo_web_test.h"
#include "tests/host/web/wrong_answers.h"
#include "tests/support/free_port.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr const char* haproxy = "/usr/sbin/haproxy";

class BehindBalancerTest : public OrvoWebTest {
protected:
    static std::string cookies(const HttpResult& result) {
        std::string all;
        for (std::size_t i = 0; i < result->get_header_value_count("Set-Cookie"); ++i)
            all += result->get_header_value("Set-Cookie", i) + '\n';
        return all;
    }
};

TEST_F(BehindBalancerTest, TheClientIsTheOneInFrontOfATrustedProxy) {
    write("who.asp",
          "<% var v = Request.ServerVariables; Session('a') = 1 %>"
          "<%= v('REMOTE_ADDR') %> <%= v('REMOTE_PORT') %> <%= v('HTTPS') %> "
          "<%= v('SERVER_NAME') %> <%= v('SERVER_PORT') %> <%= v('HTTP_HOST') %> "
          "[<%= v('HTTP_X_FORWARDED_FOR') %>]");
    audit_ = "[AUDIT]\nFile=audit.jsonl\nSync=yes\n";
    const fs::path access = folder_.path() / "access.log";
    const HttpFields forwarded{{"X-Forwarded-For", "127.0.0.1, 203.0.113.7"},
                               {"X-Forwarded-Proto", "https"},
                               {"X-Forwarded-Host", "shop.example"}};
    for (const bool is_trusted : {true, false}) {
        fs::remove(access);
        fs::remove(folder_.path() / "audit.jsonl");
        settle(std::string("TrustedProxies = 10.0.0.0/8") + (is_trusted ? ", 127.0.0.1" : ""));
        HttpClient proxy(start({"--access-log", access}));
        const auto page = proxy.get("/who.asp", forwarded);
        const auto login =
            proxy.post("/login.asp", {{"user", "jsmith"}, {"password", "wrong"}}, forwarded);
        EXPECT_EQ(login->body, "login -1");
        const std::string client = is_trusted ? "203.0.113.7" : "127.0.0.1";
        if (is_trusted) {
            EXPECT_EQ(page->body, "203.0.113.7  on shop.example 443 shop.example []");
            EXPECT_TRUE(std::regex_match(
                cookies(page),
                std::regex("__Host-orvosession=[^;]+; Path=/; Secure; HttpOnly; SameSite=Lax\n")))
                << cookies(page);
            EXPECT_NE(page->get_header_value("Strict-Transport-Security"), "");
        } else {
            EXPECT_TRUE(std::regex_match(page->body,
                                         std::regex("127\\.0\\.0\\.1 \\d+ off 127\\.0\\.0\\.1 \\d+ "
                                                    "127\\.0\\.0\\.1 \\[\\]")))
                << page->body;
            EXPECT_TRUE(cookies(page).starts_with("orvosession=")) << cookies(page);
            EXPECT_EQ(page->get_header_value("Strict-Transport-Security"), "");
        }
        EXPECT_NE(content_of(access).find(' ' + client + " GET /who.asp 200 "), std::string::npos)
            << content_of(access);
        EXPECT_NE(content_of(folder_.path() / "audit.jsonl").find("\"from\":\"" + client + '"'),
                  std::string::npos)
            << content_of(folder_.path() / "audit.jsonl");
    }
}

TEST_F(BehindBalancerTest, IsNotReadyAnyMoreAsSoonAsItIsAskedToEndAndGoesOnUntilThat) {
    settle("DrainDelay = 3600\nAdminAddress = 127.0.0.1:0\n");
    const int port = start();
    const int administration = administration_port();
    for (const int its : {port, administration}) {
        EXPECT_EQ(HttpClient(its).get("/health/ready")->body, "ready\n");
        EXPECT_EQ(HttpClient(its).get("/health/live")->body, "alive\n");
    }
    EXPECT_EQ(HttpClient(administration).get("/default.asp")->status, 404);
    process_->send(SIGTERM);
    for (const int its : {port, administration}) {
        EXPECT_TRUE(seen([&] { return HttpClient(its).get("/health/ready")->status == 503; }));
        EXPECT_EQ(HttpClient(its).get("/health/ready")->body, "it is about to end\n");
        EXPECT_EQ(HttpClient(its).get("/health/live")->body, "alive\n");
    }
    const auto page = HttpClient(port).get("/default.asp");
    EXPECT_EQ(page->body, "home");
    EXPECT_EQ(page->get_header_value("Connection"), "close");
    EXPECT_TRUE(process_->running());
    process_->send(SIGTERM);
    EXPECT_LE(process_->wait(), 1);  // 1 where the last connection has not closed yet
}

// Three nodes on ports of their own, and haproxy, which never asks another node where one fails.
// The last node is told of clients by the PROXY protocol, the others by X-Forwarded-For.
class RollingRestartTest : public BehindBalancerTest {
protected:
    static constexpr std::size_t count = 3;

    static bool uses_header(std::size_t node) { return node == count - 1; }

    fs::path log_of(std::size_t node) const {
        return folder_.path() / ("node" + std::to_string(node));
    }
    void start_node(std::size_t node) {
        const fs::path settings = folder_.path() / ("settings" + std::to_string(node));
        std::ofstream(settings) << "[SITE]\nDrainDelay = 2\nTrustedProxies = 127.0.0.1\n"
                                << "ProxyProtocol = " << uses_header(node) << '\n';
        nodes_[node].emplace(
            std::vector<std::string>{std::string(ORVO_BIN) + "/orvo-web", site(), "--config",
                                     settings, "--port", std::to_string(ports_[node])},
            log_of(node));
    }
    void start_haproxy() {
        std::string lines;
        {
            std::array<FreePort, count + 1> free;
            for (std::size_t i = 0; i < count; ++i) ports_[i] = free[i].number();
            port_ = free[count].number();
        }
        for (std::size_t i = 0; i < count; ++i)
            lines += "    server node" + std::to_string(i) +
                     " 127.0.0.1:" + std::to_string(ports_[i]) +
                     (uses_header(i) ? " send-proxy-v2\n" : "\n");
        const fs::path file = folder_.path() / "haproxy.cfg";
        std::ofstream(file) << R"(
defaults
    mode http
    retries 0
    option forwardfor
    http-reuse always
    timeout connect 10s
    timeout client 60s
    timeout server 60s
    timeout check 10s
frontend site
    bind 127.0.0.1:)" << port_
                            << R"(
    http-response set-header X-Node %s
    default_backend pages
backend pages
    balance roundrobin
    option httpchk GET /health/ready
    default-server check inter 100ms fall 1 rise 1
)" << lines;
        haproxy_.emplace(std::vector<std::string>{haproxy, "-db", "-f", file},
                         folder_.path() / "haproxy.log");
    }
    // Whether haproxy has sent something to this node from now on.
    bool is_asked(std::size_t node) {
        const int before = answers_[node];
        return seen([&] { return answers_[node] > before; });
    }

    // One request after the other, each on a connection of its own, so that none is asked again.
    void load() {
        for (int i = 0; !is_over_; ++i) {
            HttpClient client(port_);
            const auto result = i % 3 == 0   ? client.get("/default.asp")
                                : i % 3 == 1 ? client.get("/style.css")
                                             : client.post("/form.asp", {{"a", "sent"}});
            const char* body = i % 3 == 0 ? "home" : i % 3 == 1 ? "p{}" : "sent";
            ++asked_;
            if (failures_.expect(result, 200, body))
                ++answers_[result->get_header_value("X-Node").back() - '0'];
        }
    }

    std::array<int, count> ports_{};
    int port_ = 0;
    std::array<std::optional<ChildProcess>, count> nodes_;
    std::optional<ChildProcess> haproxy_;
    std::atomic<bool> is_over_ = false;
    std::atomic<int> asked_ = 0;
    std::array<std::atomic<int>, count> answers_{};
    WrongAnswers failures_;
};

TEST_F(RollingRestartTest, OfAllNodesOneAfterTheOtherFailsNoRequest) {
    if (!fs::exists(haproxy)) GTEST_SKIP() << "no haproxy here";
    write("style.css", "p{}");
    write("form.asp", "<%= Request.Form('a') %>");
    start_haproxy();
    for (std::size_t i = 0; i < count; ++i) start_node(i);
    ASSERT_TRUE(seen([&] {
        const auto result = HttpClient(port_).get("/default.asp");
        if (result && result->status == 200)
            ++answers_[result->get_header_value("X-Node").back() - '0'];
        return std::ranges::all_of(answers_, [](const auto& answers) { return answers > 0; });
    })) << content_of(folder_.path() / "haproxy.log")
        << content_of(log_of(0));

    std::vector<std::thread> browsers;
    for (int i = 0; i < 4; ++i) browsers.emplace_back([this] { load(); });
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_TRUE(is_asked(i));
        nodes_[i]->send(SIGTERM);
        EXPECT_EQ(nodes_[i]->wait(), 0) << content_of(log_of(i));
        start_node(i);
        EXPECT_TRUE(is_asked(i)) << content_of(log_of(i));
    }
    is_over_ = true;
    for (std::thread& browser : browsers) browser.join();
    EXPECT_EQ(failures_.count(), 0) << "of " << asked_ << ": " << failures_.first();
    EXPECT_GT(asked_, 100);
    RecordProperty("requests", asked_);
}

}  // namespace
}  // namespace orvo::web
