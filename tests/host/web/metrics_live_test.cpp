// What the program tells of itself: its figures, and what is made of them; one identifier in all
// logs.

#include <gmock/gmock.h>

#include <future>
#include <set>

#include "tests/host/web/orvo_web_test.h"
#include "tests/support/redis_server.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsSubsetOf;

const fs::path source = ORVO_SOURCE;

// The first group of each match.
std::set<std::string> matches(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::set<std::string> all;
    for (std::sregex_iterator found(text.begin(), text.end(), expression), end; found != end;
         ++found)
        all.insert((*found)[1]);
    return all;
}

class OrvoWebFigures : public OrvoWebTest {
protected:
    OrvoWebFigures() { settle("AdminAddress = 127.0.0.1:0\nPageTimeout = 20\n"); }

    int start(std::vector<std::string> options = {}) {
        const int port = OrvoWebTest::start(std::move(options));
        administration_ = administration_port();
        return port;
    }
    std::string figures() const { return HttpClient(administration_).get("/metrics")->body; }
    static std::set<std::string> families(const std::string& figures) {
        return matches(figures, "(?:^|\n)# TYPE (\\S+) ");
    }
    // -1 where there is no such line.
    static double value(const std::string& figures, const std::string& sample) {
        const auto at = ('\n' + figures).find('\n' + sample + ' ');
        return at == std::string::npos ? -1 : std::stod(figures.substr(at + sample.size()));
    }
    // A host that has done a bit of everything.
    std::string figures_after_work() {
        Browser browser(start());
        log_in(browser, "jsmith", "wrong-sample");
        EXPECT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
        EXPECT_EQ(browser.get("/account/")->status, 200);
        EXPECT_EQ(browser.get("/admin/")->status, 302);
        EXPECT_EQ(browser.get("/none")->status, 404);
        return figures();
    }

    int administration_ = 0;
};

TEST_F(OrvoWebFigures, TellWhatTheHostHasDone) {
    const std::string all = figures_after_work();
    const std::string server = "server=\"ldap://" + slapd->server() + "\"";
    EXPECT_EQ(value(all, "orvo_logins_total{outcome=\"wrong\"}"), 1) << all;
    EXPECT_EQ(value(all, "orvo_logins_total{outcome=\"right\"}"), 1);
    EXPECT_EQ(value(all, "orvo_logins_total{outcome=\"failure\"}"), 0);
    EXPECT_EQ(value(all, "orvo_filter_events_total{event=\"login\"}"), 1);
    EXPECT_EQ(value(all, "orvo_filter_events_total{event=\"refusal\"}"), 1);
    EXPECT_EQ(value(all, "orvo_sessions"), 1);
    EXPECT_EQ(value(all, "orvo_http_answer_duration_seconds_count{kind=\"page\"}"), 4);
    EXPECT_EQ(value(all,
                    "orvo_http_requests_total{method=\"POST\",status=\"3xx\","
                    "lane=\"directory\"}"),
              1);
    EXPECT_EQ(value(all, "orvo_directory_server_state{" + server + ",state=\"up\"}"), 1);
    EXPECT_EQ(value(all, "orvo_directory_server_state{" + server + ",state=\"down\"}"), 0);
    EXPECT_GE(value(all, "orvo_directory_operation_duration_seconds_count{" + server +
                             ",operation=\"bind\"}"),
              2);
    EXPECT_GE(value(all, "orvo_directory_connections{use=\"user\",state=\"idle\"}"), 1);
    EXPECT_EQ(value(all, "orvo_script_memory_bytes_count"), 3) << "the pages that ran";
    EXPECT_EQ(value(all, "orvo_metrics_failures_total"), 0);
    EXPECT_EQ(all.find("jsmith"), std::string::npos) << "nobody is named";
}

TEST_F(OrvoWebFigures, AreAllInTheTableAndTheTableHasNoOthers) {
    const std::string table = content_of(source / "docs/metrics.md");
    std::set<std::string> described;
    for (const std::string& cell : matches(table, "\n\\| ((?:`[a-z_]+`(?:, )?)+) \\|"))
        described.merge(matches(cell, "`([a-z_]+)`"));
    EXPECT_EQ(families(figures_after_work()), described);
}

TEST_F(OrvoWebFigures, AreWhatDashboardAndRulesAskFor) {
    const std::set<std::string> there = families(figures_after_work());
    // Its expressions, as a program that reads JSON finds them.
    write("expressions.js", R"(
var files = new ActiveXObject('Scripting.FileSystemObject');
var dashboard = JSON.parse(files.OpenTextFile(WScript.Arguments(0)).ReadAll());
for (var i = 0; i < dashboard.panels.length; i++)
    for (var j = 0; j < (dashboard.panels[i].targets || []).length; j++)
        WScript.Echo(dashboard.panels[i].targets[j].expr);
for (var k = 0; k < dashboard.templating.list.length; k++)
    WScript.Echo(dashboard.templating.list[k].definition || '');
)");
    const std::string dashboard =
        output_of({std::string(ORVO_BIN) + "/orvo-script", site() / "expressions.js",
                   source / "examples/monitoring/dashboard.json"});
    const std::string rules = content_of(source / "examples/monitoring/alerts.yml");
    EXPECT_EQ(matches(rules, "- alert: (\\w+)").size(), 6u);
    for (const std::string& text : {dashboard, rules}) {
        std::set<std::string> asked;
        for (const std::string& name : matches(text, "\\b((?:orvo|process)_[a-z_]+)"))
            asked.insert(std::regex_replace(name, std::regex("_(bucket|sum|count)$"), ""));
        EXPECT_GE(asked.size(), 5u);
        EXPECT_THAT(asked, IsSubsetOf(there));
    }
}

TEST_F(OrvoWebFigures, AreGoodInTheEyesOfPrometheus) {
    write("figures", figures_after_work());
    const auto checked = [](const std::string& command) {
        return output_of({"/bin/sh", "-c", "promtool " + command + " 2>&1"});
    };
    EXPECT_NO_THROW(EXPECT_EQ(checked("check metrics < " + (site() / "figures").string()), ""));
    EXPECT_NO_THROW(
        EXPECT_THAT(checked("check rules " + (source / "examples/monitoring/alerts.yml").string()),
                    HasSubstr("SUCCESS: 6 rules found")));
}

TEST_F(OrvoWebFigures, AreToldWhileAllWorkersAreBusyAndTheDirectoryIsAway) {
    write("busy.asp", "<% while (true) {} %>");
    const int port = start({"--workers", "1"});
    Browser browser(port);
    ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
    slapd->stop();
    std::thread busy([port] { Browser(port).get("/busy.asp"); });
    std::string all;
    EXPECT_TRUE(seen([&] {
        all = figures();
        return value(all, "orvo_worker_jobs_running{lane=\"undecided\"}") == 1;
    })) << all;
    EXPECT_EQ(value(all, "orvo_page_duration_seconds_count{outcome=\"too_slow\"}"), 0);
    slapd->start();
    process_.reset();
    busy.join();
}

TEST_F(OrvoWebFigures, TellOfTheSharedStoreAndWhetherItIsThere) {
    RedisServer redis;
    audit_ = redis.site_section();
    Browser browser(start());
    ASSERT_EQ(log_in(browser, "jsmith", "shop-sample")->status, 303);
    const auto of = [&](const std::string& name, const char* use) {
        return value(figures(), "orvo_store_" + name + "{use=\"" + use + "\"}");
    };
    for (const char* use : {"sessions", "logins"}) {
        EXPECT_EQ(of("reachable", use), 1) << use;
        EXPECT_GT(of("commands_total", use), 0) << use;
        EXPECT_GT(of("command_seconds_total", use), 0) << use;
        EXPECT_EQ(of("failures_total", use), 0) << use;
    }
    EXPECT_EQ(value(figures(), "orvo_shared_sessions"), 1);
    EXPECT_GT(value(figures(), "orvo_shared_session_bytes"), 1000);
    redis.kill();
    EXPECT_NE(log_in(browser, "jsmith", "shop-sample")->status, 303);
    EXPECT_EQ(value(figures(), "orvo_shared_sessions"), -1);
    EXPECT_EQ(of("reachable", "sessions"), 0);
    EXPECT_GT(of("failures_total", "sessions"), 0);
}

TEST_F(OrvoWebFigures, LeadByOneIdentifierThroughAllLogs) {
    write("fail.asp", R"(<%
Server.CreateObject('OrvoMembership.User').BindAs('nobody', 'cn=jsmith,ou=Users,o=Shop', 'wrong');
%>)");
    audit_ = "[AUDIT]\nFile=audit.jsonl\n";
    const fs::path access = folder_.path() / "access.log";
    Browser browser(start({"--access-log", access}));
    const auto id_of = [](const HttpResult& result) {
        return result->get_header_value("X-Request-Id");
    };
    const std::string failed = id_of(browser.get("/fail.asp"));
    const std::string checked = id_of(log_in(browser, "jsmith", "wrong-sample"));
    ASSERT_EQ(failed.size(), 16u);
    EXPECT_NE(failed, checked);
    EXPECT_THAT(content_of(access), HasSubstr("ms " + failed + "\n"));
    EXPECT_THAT(content_of(access), HasSubstr("ms " + checked + "\n"));
    EXPECT_THAT(content_of(log()), HasSubstr(" " + failed + " /fail.asp: "));
    EXPECT_THAT(content_of(folder_.path() / "orvo.log"),
                HasSubstr(" failed (request " + failed + "), 0x"));
    EXPECT_THAT(content_of(folder_.path() / "audit.jsonl"),
                HasSubstr("\"request\":\"" + checked + "\"}"));
}

}  // namespace
}  // namespace orvo::web
