#include "suite/audit/audit_event.h"

#include <gtest/gtest.h>

namespace orvo::audit {
namespace {

// 2024-05-06T07:08:09.123Z
constexpr std::chrono::system_clock::time_point moment{std::chrono::milliseconds{1714979289123}};

TEST(AuditEvent, IsALineOfJson) {
    EXPECT_EQ(json_line({.time = moment,
                         .event = u"change",
                         .result = u"done",
                         .user = u"cn=jsmith,ou=Users,o=Shop",
                         .by = u"cn=admin,o=Shop",
                         .from = u"203.0.113.7",
                         .server = u"ldap://dir01",
                         .what = u"mail",
                         .request = u"yN1"}),
              R"({"time":"2024-05-06T07:08:09.123Z","event":"change","result":"done",)"
              R"("user":"cn=jsmith,ou=Users,o=Shop","by":"cn=admin,o=Shop","from":"203.0.113.7",)"
              R"("server":"ldap://dir01","what":"mail","request":"yN1"})");
}

TEST(AuditEvent, LeavesEmptyTextsOut) {
    EXPECT_EQ(json_line({.time = moment, .event = u"logout", .result = u""}),
              R"({"time":"2024-05-06T07:08:09.123Z","event":"logout","result":""})");
}

TEST(AuditEvent, EscapesWhatWouldBreakTheLineOrDeceiveItsReader) {
    const std::string line = json_line({.time = moment,
                                        .event = u"check",
                                        .result = u"wrong",
                                        .user = u"\"a\\b\"\n\t\x7F\u202Eü"});
    EXPECT_NE(line.find(R"("user":"\"a\\b\"\u000a\u0009\u007f\u202eü")"), std::string::npos)
        << line;
}

TEST(AuditEvent, ShowsHalvesOfSurrogatePairsByTheirCodes) {
    const Event event{.time = moment, .event = u"check", .result = u"wrong", .user = u"a\xD800"};
    EXPECT_NE(json_line(event).find(R"("user":"a\ud800")"), std::string::npos);
    EXPECT_EQ(try_parse(json_line(event)), event);
}

TEST(AuditEvent, CutsLongTexts) {
    const std::string line =
        json_line({.time = moment, .event = u"check", .result = u"wrong", .user = Text(513, u'x')});
    EXPECT_NE(line.find("\"" + std::string(512, 'x') + "…\""), std::string::npos);
    // Not within a pair.
    const Text pairs = Text(511, u'x') + u"\U0001F600\U0001F600";
    EXPECT_NE(json_line({.time = moment, .event = u"check", .result = u"wrong", .user = pairs})
                  .find("\"" + std::string(511, 'x') + "…\""),
              std::string::npos);
}

TEST(AuditEvent, ReadsWhatItHasWritten) {
    const Event event{.time = moment,
                      .event = u"check",
                      .result = u"too many failures",
                      .user = u"cn=\"ü\\\u2028\U0001F600\n",
                      .by = u"b",
                      .from = u"::1",
                      .server = u"/srv/shop.db",
                      .what = u"w",
                      .request = u"r"};
    EXPECT_EQ(try_parse(json_line(event)), event);
}

TEST(AuditEvent, PassesOverKeysThatItDoesNotKnow) {
    EXPECT_EQ(try_parse(R"({ "time" : "2024-05-06T07:08:09.123Z", "later":"\/x", "event":"a" } )"),
              (Event{.time = moment, .event = u"a", .result = u""}));
}

TEST(AuditEvent, RefusesWhatIsNoLineOfTheAudit) {
    for (const char* line :
         {"", "{", "{}", "[]", "null", R"({"time":"2024-05-06T07:08:09.123Z")",
          R"({"time":"2024-05-06T07:08:09.123Z"} more)", R"({"time":"yesterday"})",
          R"({"event":"check"})", R"({"time":1})", R"({"time":"2024-05-06","user":"\u12"})",
          R"({"time":"2024-05-06","user":"\x"})", R"({"time":"2024-05-06","user":"a)"})
        EXPECT_FALSE(try_parse(line)) << line;
}

TEST(AuditTime, IsUtcWithMilliseconds) {
    EXPECT_EQ(time_text(moment), "2024-05-06T07:08:09.123Z");
    EXPECT_EQ(time_text({}), "1970-01-01T00:00:00.000Z");
}

TEST(AuditTime, MayBeGivenShorter) {
    using namespace std::chrono_literals;
    EXPECT_EQ(try_time("2024-05-06T07:08:09.123Z"), moment);
    EXPECT_EQ(try_time("2024-05-06T07:08:09"), moment - 123ms);
    EXPECT_EQ(try_time("2024-05-06 07:08"), moment - 9123ms);
    EXPECT_EQ(try_time("2024-05-06"), moment - 123ms - 9s - 8min - 7h);
}

TEST(AuditTime, IsRefusedWhereItIsNone) {
    for (const char* text :
         {"", "Z", "yesterday", "2024", "2024-05", "2024-13-01", "2024-02-30", "2024-05-06T07",
          "2024-05-06T24:00", "2024-05-06T07:60", "2024-05-06T07:08:09.1",
          "2024-05-06T07:08:09.123+02:00", "2024-05-06x07:08", "2024-5-06", "+024-05-06"})
        EXPECT_FALSE(try_time(text)) << text;
}

}  // namespace
}  // namespace orvo::audit
