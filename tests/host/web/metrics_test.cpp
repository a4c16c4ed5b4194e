#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "host/web/messages/request_id.h"
#include "host/web/metrics/web_metrics.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

std::size_t count_of(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(Exposition, NamesAFamilyAndItsSamples) {
    Exposition out;
    out.family("orvo_jobs_total", MetricType::counter, "Jobs.");
    out.sample(std::uint64_t{18446744073709551615u});
    out.sample(0.25, {{"lane", "page"}, {"kind", "a"}});
    EXPECT_EQ(out.text(),
              "# HELP orvo_jobs_total Jobs.\n"
              "# TYPE orvo_jobs_total counter\n"
              "orvo_jobs_total 18446744073709551615\n"
              "orvo_jobs_total{lane=\"page\",kind=\"a\"} 0.25\n");
}

TEST(Exposition, EscapesWhatWouldEndATextOrALine) {
    Exposition out;
    out.family("a", MetricType::gauge, "One \\ two\n\"three\"");
    out.sample(1.0, {{"server", "ldap://\"a\"\\\n"}});
    EXPECT_EQ(out.text(),
              "# HELP a One \\\\ two\\n\"three\"\n"
              "# TYPE a gauge\n"
              "a{server=\"ldap://\\\"a\\\"\\\\\\n\"} 1\n");
}

TEST(Exposition, WritesNumbersThatAreNone) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    Exposition out;
    out.family("a", MetricType::gauge, "A.");
    for (const double value : {infinite, -infinite, std::numeric_limits<double>::quiet_NaN()})
        out.sample(value);
    EXPECT_NE(out.text().find("a +Inf\na -Inf\na NaN\n"), std::string::npos) << out.text();
}

TEST(Exposition, CountsEachBucketOfAHistogramIntoAllThatFollow) {
    DurationHistogram took;
    took.observe(0ns);
    took.observe(500us);  // a bound is in its bucket
    took.observe(3ms);
    took.observe(31s);
    Exposition out;
    out.family("a_seconds", MetricType::histogram, "A.");
    out.sample(took.reading(), {{"kind", "page"}});
    const auto has = [&](const char* line) { return count_of(out.text(), line) == 1; };
    EXPECT_TRUE(has("\na_seconds_bucket{kind=\"page\",le=\"0.0005\"} 2\n")) << out.text();
    EXPECT_TRUE(has("\na_seconds_bucket{kind=\"page\",le=\"0.0025\"} 2\n"));
    EXPECT_TRUE(has("\na_seconds_bucket{kind=\"page\",le=\"0.005\"} 3\n"));
    EXPECT_TRUE(has("\na_seconds_bucket{kind=\"page\",le=\"30\"} 3\n"));
    EXPECT_TRUE(has("\na_seconds_bucket{kind=\"page\",le=\"+Inf\"} 4\n"));
    EXPECT_TRUE(has("\na_seconds_sum{kind=\"page\"} 31.0035\n"));
    EXPECT_TRUE(has("\na_seconds_count{kind=\"page\"} 4\n"));
}

TEST(MetricFamily, HasAFigureForEachCombinationFromTheBeginning) {
    MetricFamily<Counter, 2> jobs(
        "jobs_total", "Jobs.",
        {MetricLabel{"lane", {"page", "file"}}, MetricLabel{"state", {"done", "failed", "lost"}}});
    jobs.at(1, 2).add(3);
    jobs.at(0, 1).add();
    Exposition out;
    jobs.write(out);
    EXPECT_EQ(out.text(),
              "# HELP jobs_total Jobs.\n"
              "# TYPE jobs_total counter\n"
              "jobs_total{lane=\"page\",state=\"done\"} 0\n"
              "jobs_total{lane=\"page\",state=\"failed\"} 1\n"
              "jobs_total{lane=\"page\",state=\"lost\"} 0\n"
              "jobs_total{lane=\"file\",state=\"done\"} 0\n"
              "jobs_total{lane=\"file\",state=\"failed\"} 0\n"
              "jobs_total{lane=\"file\",state=\"lost\"} 3\n");
}

TEST(WebMetrics, CountRequestsByWhatTheyWereAndWhatBecameOfThem) {
    WebMetrics metrics;
    HttpResponse missing, odd;
    missing.status = 404;
    odd.status = 999;
    metrics.note_answer({.method = "HEAD", .lane = Lane::directory}, missing, AnswerKind::page,
                        2ms);
    metrics.note_answer({.method = "PROPFIND\n\"", .lane = Lane::aside}, odd, AnswerKind::health,
                        2ms);
    metrics.count({.method = "GET"}, missing);
    metrics.note_page(PageOutcome::too_slow, 1s);
    Exposition out;
    metrics.write(out);
    const auto has = [&](const char* line) { return count_of(out.text(), line) == 1; };
    EXPECT_TRUE(
        has("orvo_http_requests_total{method=\"HEAD\",status=\"4xx\","
            "lane=\"directory\"} 1\n"));
    EXPECT_TRUE(has("orvo_http_requests_total{method=\"other\",status=\"5xx\",lane=\"aside\"} 1\n"))
        << "what a browser says is no label";
    EXPECT_TRUE(has("orvo_http_requests_total{method=\"GET\",status=\"4xx\",lane=\"refused\"} 1"));
    EXPECT_TRUE(has("orvo_http_answer_duration_seconds_count{kind=\"page\"} 1\n"));
    EXPECT_TRUE(has("orvo_http_answer_duration_seconds_count{kind=\"other\"} 0\n"));
    EXPECT_TRUE(has("orvo_page_duration_seconds_bucket{outcome=\"too_slow\",le=\"1\"} 1\n"));
    EXPECT_TRUE(has("orvo_page_duration_seconds_sum{outcome=\"too_slow\"} 1\n"));
}

TEST(WebMetrics, LoseNothingOfManyThreadsAndAreReadMeanwhile) {
    WebMetrics metrics;
    constexpr int of_each = 2000;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < of_each; ++n) {
                metrics.note_answer({.lane = Lane::page}, {}, AnswerKind::page, 1ms);
                metrics.note_page(PageOutcome::done, 1ms);
            }
        });
    for (int i = 0; i < 20; ++i) {
        Exposition out;
        metrics.write(out);
    }
    for (std::thread& thread : threads) thread.join();
    Exposition out;
    metrics.write(out);
    for (const char* line :
         {"orvo_http_requests_total{method=\"GET\",status=\"2xx\",lane=\"page\"} 8000\n",
          "orvo_page_duration_seconds_count{outcome=\"done\"} 8000\n",
          "orvo_page_duration_seconds_sum{outcome=\"done\"} 8\n"})
        EXPECT_EQ(count_of(out.text(), line), 1u) << out.text();
}

TEST(RequestId, IsRandomAndOfTheUsualSigns) {
    const std::string one = new_request_id();
    EXPECT_EQ(one.size(), 16u);
    EXPECT_TRUE(is_request_id(one)) << one;
    EXPECT_NE(one, new_request_id());
}

TEST(RequestId, OfSomebodyElseIsTakenWhereItCanDoNoHarmInALog) {
    const std::string longest(64, 'a');
    for (const std::string& id : {std::string("a"), std::string("7f3c-00.A_z:1=+/"), longest})
        EXPECT_TRUE(is_request_id(id)) << id;
    for (const std::string& id :
         {std::string(), longest + 'a', std::string("a b"), std::string("a\n"), std::string("a\""),
          std::string("a\\"), std::string("\xC3\xA4"), std::string("a\0", 2)})
        EXPECT_FALSE(is_request_id(id)) << id;
}

}  // namespace
}  // namespace orvo::web
