#include <gmock/gmock.h>

#include <csignal>
#include <fstream>

#include "host/admin/audit/show_audit.h"
#include "tests/host/admin/orvo_program.h"
#include "tests/support/pseudo_terminal.h"

namespace orvo::admin {
namespace {

using testing::HasSubstr;

class OrvoAudit : public OrvoProgram {
protected:
    // `orvo audit ...`, of the site in the test's folder.
    std::string audit(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {ORVO_ADMIN, "audit", "--site", path("site.ini")});
        return printed(arguments);
    }
    std::string printed(const std::vector<std::string>& arguments) {
        std::filesystem::remove(path("log"));
        code = ChildProcess(arguments, path("log")).wait();
        return content_of(path("log"));
    }
    // The times of what is printed.
    std::string days_of(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--columns", "time", "--format", "csv"});
        const std::string csv = audit(arguments);
        std::string days;
        for (std::size_t at = 0; (at = csv.find("2026-11-", at)) != std::string::npos; ++at)
            days += (days.empty() ? "" : " ") + csv.substr(at + 8, 2);
        return days;
    }
    static std::string line(const std::string& day, const std::string& rest) {
        return R"({"time":"2026-11-)" + day + R"(T12:00:00.000Z",)" + rest + "}\n";
    }

    void SetUp() override {
        folder.write("site.ini", "[AUDIT]\nFile=audit.jsonl\n");
        const std::string smith = R"("user":"cn=jsmith,ou=Users,o=Shop")";
        folder.write("audit.2.jsonl", line("10", R"("event":"check","result":"right",)" + smith +
                                                     R"(,"from":"203.0.113.7","server":"dir01")"));
        folder.write("audit.1.jsonl",
                     line("11", R"("event":"check","result":"wrong",)" + smith +
                                    R"(,"from":"203.0.113.8")") +
                         line("12", R"("event":"check","result":"locked","user":"cn=Lady\\, Ada)"
                                    R"(,ou=Users,o=Shop","from":"2001:db8::1")"));
        folder.write("audit.jsonl",
                     line("13", R"-("event":"change","result":"failed (0x80072098)",)-" + smith +
                                    R"(,"by":"cn=admin,o=Shop","what":"mail")") +
                         line("14", R"("event":"login","result":"done","user":"jsmith")"));
    }
};

TEST_F(OrvoAudit, ShowsAllThatThereIsTheOldestFirst) {
    EXPECT_EQ(
        audit({"--columns", "time,event,result,user"}),
        "time                      event   result               user\n"
        "2026-11-10T12:00:00.000Z  check   right                cn=jsmith,ou=Users,o=Shop\n"
        "2026-11-11T12:00:00.000Z  check   wrong                cn=jsmith,ou=Users,o=Shop\n"
        "2026-11-12T12:00:00.000Z  check   locked               cn=Lady\\, Ada,ou=Users,o=Shop\n"
        "2026-11-13T12:00:00.000Z  change  failed (0x80072098)  cn=jsmith,ou=Users,o=Shop\n"
        "2026-11-14T12:00:00.000Z  login   done                 jsmith\n");
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoAudit, WritesCsvAndJson) {
    EXPECT_EQ(audit({"--since", "2026-11-13", "--until", "2026-11-14", "--format", "csv"}),
              "time,event,result,user,by,from,what,server,request\r\n"
              "2026-11-13T12:00:00.000Z,change,failed (0x80072098),\"cn=jsmith,ou=Users,o=Shop\","
              "\"cn=admin,o=Shop\",,mail,,\r\n");
    EXPECT_EQ(audit({"--event", "login", "--columns", "user,by", "--format", "json"}),
              "[\n  {\"user\": \"jsmith\", \"by\": null}\n]\n");
}

TEST_F(OrvoAudit, AsksForUsersByAnySpellingOfTheirName) {
    EXPECT_EQ(days_of({"--user", "JSmith"}), "10 11 13 14");
    EXPECT_EQ(days_of({"--user", "CN=jsmith, OU=users, o=shop"}), "10 11 13");
    EXPECT_EQ(days_of({"--user", "Lady, Ada"}), "12");
    EXPECT_EQ(days_of({"--user", "lady, ada", "--user", "nobody"}), "12");
    EXPECT_EQ(days_of({"--by", "admin"}), "13");
    EXPECT_EQ(days_of({"--user", "smith"}), "");
}

TEST_F(OrvoAudit, AsksForEventsResultsAddressesAndTimes) {
    EXPECT_EQ(days_of({"--event", "login,change"}), "13 14");
    EXPECT_EQ(days_of({"--result", "locked", "--result", "failed"}), "12 13");
    EXPECT_EQ(days_of({"--from", "203.0.113.8"}), "11");
    EXPECT_EQ(days_of({"--from", "203.0.113."}), "10 11");
    EXPECT_EQ(days_of({"--from", "2001:db8:"}), "12");
    EXPECT_EQ(days_of({"--from", "203.0.113"}), "");
    EXPECT_EQ(days_of({"--since", "2026-11-12T12:00Z", "--until", "2026-11-14T12:00:00Z"}),
              "12 13");
    EXPECT_EQ(days_of({"--event", "check", "--result", "wrong", "--user", "jsmith"}), "11");
}

TEST_F(OrvoAudit, ATimeMayBeHowLongAgoItIs) {
    using namespace std::chrono_literals;
    const auto now = std::chrono::system_clock::now();
    EXPECT_EQ(try_time_or_age("30m", now), now - 30min);
    EXPECT_EQ(try_time_or_age("2h", now), now - 2h);
    EXPECT_EQ(try_time_or_age("7d", now), now - 7 * 24h);
    for (const char* text : {"", "h", "2", "2w", "-2h", "2hh", "100001d", "99999999999h"})
        EXPECT_FALSE(try_time_or_age(text, now)) << text;
}

TEST_F(OrvoAudit, ReadsAnotherFile) {
    EXPECT_THAT(audit({"--file", path("audit.2.jsonl"), "--columns", "result"}),
                testing::MatchesRegex("result *\nright *\n"));
}

TEST_F(OrvoAudit, SaysWhichLinesAreNoneOfAnAudit) {
    std::ofstream(path("audit.1.jsonl"), std::ios::app) << "torn\n";
    std::ofstream(path("audit.jsonl"), std::ios::app) << "{\"time\":1}\n";
    const std::string all = audit({"--columns", "event"});
    EXPECT_THAT(all, HasSubstr("login"));
    EXPECT_THAT(all, HasSubstr("orvo: 2 lines are none of an audit, the first of them in "
                               "audit.1.jsonl, line 3\n"));
    EXPECT_EQ(code, 3);
}

TEST_F(OrvoAudit, SaysWhyThereIsNothingToShow) {
    const std::string site = path("site.ini");
    folder.write("site.ini", "[AUDIT]\nJournal=yes\n");
    EXPECT_EQ(audit({}), "orvo: " + site +
                             ": the audit goes to the journal; read it with journalctl -t "
                             "orvo-audit -o cat\n");
    EXPECT_EQ(code, 1);
    folder.write("site.ini", "[MEMBERSHIP]\n");
    EXPECT_EQ(audit({}), "orvo: " + site +
                             ": the site has no audit; name a File in section [AUDIT] to begin "
                             "one\n");
    folder.write("site.ini", "[AUDIT]\nFile=none.jsonl\n");
    EXPECT_EQ(audit({}), "orvo: " + path("none.jsonl") + ": No such file or directory\n");
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoAudit, RefusesWhatItDoesNotKnow) {
    EXPECT_THAT(audit({"--format", "ldif"}), HasSubstr("--format is table, csv or json"));
    EXPECT_EQ(code, 2);
    EXPECT_THAT(audit({"--columns", "date"}), HasSubstr("there is no column \"date\"; there are "));
    EXPECT_EQ(code, 2);
    EXPECT_THAT(audit({"--since", "yesterday"}),
                HasSubstr("yesterday is no time such as 2026-11-22T12:34Z, 2h or 7d"));
    EXPECT_EQ(code, 2);
}

TEST_F(OrvoAudit, FollowsWhatIsRecordedAlsoIntoANewFile) {
    PseudoTerminal follower({ORVO_ADMIN, "audit", "--site", path("site.ini"), "--user", "jsmith",
                             "--since", "2026-11-14", "--follow"});
    const auto shown = [](std::string line) { return line.replace(line.size() - 1, 1, "\r\n"); };
    const std::string first = line("14", R"("event":"login","result":"done","user":"jsmith")");
    const std::string second = line("15", R"("event":"logout","result":"done","user":"jsmith")");
    const std::string third = line("16", R"("event":"login","result":"done","user":"jsmith")");
    follower.expect(shown(first));
    std::ofstream(path("audit.jsonl"), std::ios::app)
        << second.substr(0, 40) << std::flush << second.substr(40);
    follower.expect(shown(second));
    std::filesystem::rename(path("audit.jsonl"), path("audit.1.jsonl"));
    folder.write("audit.jsonl", line("16", R"("event":"login","user":"other")") + third);
    follower.expect(shown(third));
    EXPECT_EQ(follower.shown(), shown(first) + shown(second) + shown(third));
    follower.type("\x03");
    EXPECT_EQ(follower.wait(), 128 + SIGINT);
}

}  // namespace
}  // namespace orvo::admin
