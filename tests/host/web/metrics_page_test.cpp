#include "host/web/administration/metrics_page.h"

#include <gmock/gmock.h>

#include <optional>
#include <regex>

#include "platform/module/local_class.h"
#include "suite/counters/suite_counters.h"
#include "suite/directory/ldap/provider/LdapServers.h"
#include "suite/throttle/suite_throttle.h"
#include "tests/suite/directory/ldap/support/manual_clock.h"
#include "tests/support/environment.h"

namespace orvo::web {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// Without any class but those that a test registers.
class MetricsPageTest : public testing::Test {
protected:
    MetricsPageTest() { register_servers(); }

    void register_servers() {
        using directory::ldap::LdapServers;
        const auto& description = class_of<LdapServers>;
        servers_.emplace(from_utf8(description.progid), description.clsid,
                         [this] { return make<LdapServers>(client_).object(); });
    }

    std::string text() { return page_.answer().body; }
    double value(const std::string& sample) {
        const std::string all = text();
        std::smatch found;
        const std::regex line("(^|\n)" + std::regex_replace(sample, std::regex("[{}?.]"), "\\$&") +
                              " (\\S+)\n");
        return std::regex_search(all, found, line) ? std::stod(found[2]) : -1;
    }

    Environment no_components_{"ORVO_COMPONENTS", "/none"};
    directory::ldap::ManualClock clock_;
    directory::ldap::Client client_{clock_, directory::ldap::Client::Probing::by_caller};
    // Two ways to one machine.
    const std::shared_ptr<directory::ldap::ServerGroup> group_ = client_.servers().group(
        directory::ldap::ServerAddress::parse(u"ldap://dir01 ldap://dir01/?starttls"));
    std::optional<LocalClass> servers_;
    const LocalClass counters_ = local_class<counters::SuiteCounters>();
    const LocalClass throttle_ = local_class<throttle::SuiteThrottle>();
    WebMetrics web_;
    ServerCounts server_{7, 2, 3, {8, {1, 0, 4}, {2, 1, 5}, 0, {0, 0, 6}, 9}};
    SessionCounts sessions_{11, 12'000, 40, {1, 2, 3, 4, 5}};
    std::optional<SharedSessionCounts> shared_sessions_ = SharedSessionCounts{33, 44'000};
    std::vector<std::string> troubles_;
    MetricsPage page_{{web_, [this] { return server_; }, [this] { return sessions_; },
                       [this] { return shared_sessions_; },
                       [this](const std::string& sentence) { troubles_.push_back(sentence); }}};
};

TEST_F(MetricsPageTest, IsAnAnswerInPrometheusForm) {
    const HttpResponse answer = page_.answer();
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.content_type, "text/plain; version=0.0.4; charset=utf-8");
    std::istringstream lines(answer.body);
    std::set<std::string> families, samples;
    std::string line, family;
    const std::regex help("# HELP ([a-z_]+) [A-Z0-9].*\\."),
        type("# TYPE ([a-z_]+) (counter|gauge|histogram|summary)"),
        sample("([a-z_]+)(\\{[a-z]+=\"[^\"]*\"(,[a-z]+=\"[^\"]*\")*\\})? [-+.0-9eE]+");
    for (std::smatch found; std::getline(lines, line);) {
        if (std::regex_match(line, found, help)) {
            family = found[1];
            EXPECT_TRUE(families.insert(family).second) << family << " is there twice";
        } else if (std::regex_match(line, found, type)) {
            EXPECT_EQ(found[1], family);
        } else if (std::regex_match(line, found, sample)) {
            EXPECT_TRUE(found[1].str().starts_with(family)) << line;
            EXPECT_TRUE(samples.insert(line.substr(0, line.rfind(' '))).second)
                << line << " is there twice";
        } else {
            ADD_FAILURE() << line;
        }
    }
    EXPECT_GT(families.size(), 30u);
}

TEST_F(MetricsPageTest, TellsHowBusyTheServerIsAndWhatItRefused) {
    EXPECT_EQ(value("orvo_http_connections"), 7);
    EXPECT_EQ(value("orvo_http_connections_refused_total{reason=\"all\"}"), 2);
    EXPECT_EQ(value("orvo_http_connections_refused_total{reason=\"address\"}"), 3);
    EXPECT_EQ(value("orvo_workers"), 8);
    EXPECT_EQ(value("orvo_worker_jobs_waiting{lane=\"directory\"}"), 4);
    EXPECT_EQ(value("orvo_worker_jobs_running{lane=\"page\"}"), 2);
    EXPECT_EQ(value("orvo_worker_jobs_refused_total{lane=\"directory\"}"), 6);
    EXPECT_EQ(value("orvo_worker_jobs_turned_away_total"), 9);
}

TEST_F(MetricsPageTest, TellsOfEachServerHowItDoes) {
    client_.servers().note_failure(*group_->servers()[0], "no answer");
    const auto state = [&](const std::string& server, const std::string& name) {
        return value("orvo_directory_server_state{server=\"ldap://dir01:389" + server +
                     "\",state=\"" + name + "\"}");
    };
    EXPECT_EQ(state("", "up"), 0);
    EXPECT_EQ(state("", "suspected"), 1);
    EXPECT_EQ(state("/?starttls", "up"), 1);
    EXPECT_EQ(state("/?starttls", "suspected"), 0);
    EXPECT_EQ(value("orvo_directory_failures_total{server=\"ldap://dir01:389\"}"), 1);
}

TEST_F(MetricsPageTest, TellsOfSessionsWhatTheProcessKnows) {
    EXPECT_EQ(value("orvo_sessions"), 11);
    EXPECT_EQ(value("orvo_session_bytes"), 12'000);
    EXPECT_EQ(value("orvo_sessions_created_total"), 40);
    EXPECT_EQ(value("orvo_sessions_ended_total{reason=\"idle\"}"), 2);
    sessions_.live.reset();
    EXPECT_THAT(text(), Not(HasSubstr("orvo_sessions ")));
}

TEST_F(MetricsPageTest, TellsOfSharedSessionsWhatTheStoreKnowsIfItIsThere) {
    EXPECT_EQ(value("orvo_shared_sessions"), 33);
    EXPECT_EQ(value("orvo_shared_session_bytes"), 44'000);
    shared_sessions_.reset();
    EXPECT_THAT(text(), HasSubstr("# TYPE orvo_shared_sessions gauge\n"));
    EXPECT_EQ(value("orvo_shared_sessions"), -1);
    EXPECT_EQ(value("orvo_metrics_failures_total"), 0);
}

TEST_F(MetricsPageTest, TellsWhatTheProcessTakes) {
    EXPECT_GT(value("process_cpu_seconds_total"), 0);
    EXPECT_GT(value("process_resident_memory_bytes"), 1'000'000);
    EXPECT_GT(value("process_open_fds"), 2);
    EXPECT_GT(value("process_max_fds"), value("process_open_fds"));
    const double now = static_cast<double>(std::time(nullptr));
    EXPECT_NEAR(value("process_start_time_seconds"), now, 600);
}

TEST_F(MetricsPageTest, CountsLoginsByTheirOutcomeAndNamesNobody) {
    const double before = value("orvo_logins_total{outcome=\"wrong\"}");
    counters::SuiteCounters counters;
    counters.Count(u"logins", u"wrong");
    counters.Count(u"logins", u"jsmith");
    counters.Count(u"filter", u"refusal");
    EXPECT_EQ(value("orvo_logins_total{outcome=\"wrong\"}"), before + 1);
    EXPECT_EQ(value("orvo_logins_total{outcome=\"too many failures\"}"), 0);
    EXPECT_GE(value("orvo_filter_events_total{event=\"refusal\"}"), 1);
    EXPECT_THAT(text(), Not(HasSubstr("jsmith")));
}

TEST_F(MetricsPageTest, TellsWhatTheThrottleDid) {
    for (const char* name :
         {"admitted_total", "delayed_total", "wrong_total", "refused_total", "waiting"})
        EXPECT_EQ(value("orvo_throttle_" + std::string(name)), 0) << name;
}

TEST_F(MetricsPageTest, LeavesOutWhatCannotBeHadAndSaysSoOnce) {
    EXPECT_EQ(value("orvo_metrics_failures_total"), 0);
    servers_.reset();
    EXPECT_EQ(value("orvo_metrics_failures_total"), 1);
    EXPECT_EQ(value("orvo_metrics_failures_total"), 2);
    EXPECT_EQ(value("orvo_http_connections"), 7);
    const auto missing = HasSubstr("figures are missing: ");
    EXPECT_THAT(troubles_, ElementsAre(missing));
    register_servers();
    EXPECT_EQ(value("orvo_metrics_failures_total"), 3);
    servers_.reset();
    text();
    EXPECT_THAT(troubles_, ElementsAre(missing, missing)) << "it was well in between";
}

}  // namespace
}  // namespace orvo::web
