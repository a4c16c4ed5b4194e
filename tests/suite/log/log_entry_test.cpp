#include "suite/log/log_entry.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

std::string entry(TextView source, TextView message) {
    return log_entry(LogChannel::main, log_level_error, source, message);
}

TEST(LogEntry, AMessageOfOneLineFollowsItsSource) {
    EXPECT_EQ(entry(u"A.B", u"It failed."), "error A.B: It failed.");
    EXPECT_EQ(entry(u"A.B", u"\r\nIt failed.\r\n"), "error A.B: It failed.");
    EXPECT_EQ(entry(u"A.B", u""), "error A.B:");
    EXPECT_EQ(entry(u"", u"x"), "error : x");
}

TEST(LogEntry, TheLevelIsAWordAndAnUnknownOneANoteWithItsNumber) {
    EXPECT_EQ(log_entry(LogChannel::main, 0, u"A", u"m"), "error A: m");
    EXPECT_EQ(log_entry(LogChannel::main, 1, u"A", u"m"), "note A: m");
    EXPECT_EQ(log_entry(LogChannel::main, 2, u"A", u"m"), "note(2) A: m");
    EXPECT_EQ(log_entry(LogChannel::main, -1, u"A", u"m"), "note(-1) A: m");
}

TEST(LogEntry, TheAlternateChannelIsMarked) {
    EXPECT_EQ(log_entry(LogChannel::alternate, 0, u"A", u"m"), "error [alternate] A: m");
}

TEST(LogEntry, ABlockOfAnErrorIsIndentedBelowItsSource) {
    EXPECT_EQ(entry(u"OrvoMembership.User.BindAs",
                    u"\r\nERROR 0x80040324\r\n METHOD: OrvoMembership.User.BindAs\r\n"
                    u" DESC: \r\nERROR 0x5\r\n METHOD: X\r\n DESC: d.\r\n.\r\n INFO: i.\r\n"),
              "error OrvoMembership.User.BindAs:\n"
              "    ERROR 0x80040324\n"
              "     METHOD: OrvoMembership.User.BindAs\n"
              "     DESC: \n"
              "    ERROR 0x5\n"
              "     METHOD: X\n"
              "     DESC: d.\n"
              "    .\n"
              "     INFO: i.");
}

TEST(LogEntry, AnEmptyLineInsideAMessageStays) {
    EXPECT_EQ(entry(u"A", u"one\r\n\r\ntwo"), "error A:\n    one\n\n    two");
}

TEST(LogEntry, NoMessageCanLookLikeAnEntryOfItsOwn) {
    EXPECT_EQ(entry(u"A", u"x\n2024-05-06T07:08:09.123+00:00 error B: forged"),
              "error A:\n    x\n    2024-05-06T07:08:09.123+00:00 error B: forged");
    EXPECT_EQ(entry(u"A", u"x\r2024-05-06 error B: forged"),
              "error A: x\\u000D2024-05-06 error B: forged");
    EXPECT_EQ(entry(u"A\r\n2024-05-06 error B", u"x"),
              "error A\\u000D\\u000A2024-05-06 error B: x");
}

TEST(LogEntry, ControlCharactersAreShownByTheirCodeAndTabsKept) {
    EXPECT_EQ(entry(u"A", TextView(u"a\0b\x1B[2Jc\td\x7F", 11)),
              "error A: a\\u0000b\\u001B[2Jc\td\\u007F");
    EXPECT_EQ(entry(u"A", u"a\u0085b\u2028c\u202Ed\u2066e"),
              "error A: a\\u0085b\\u2028c\\u202Ed\\u2066e");
    EXPECT_EQ(entry(u"A", u"C:\\u001B"), "error A: C:\\u001B");
}

TEST(LogEntry, TextBeyondAsciiIsUtf8) {
    EXPECT_EQ(entry(u"A", u"Gr\u00FC\u00DFe \U0001F511 \xD800"),
              "error A: Gr\xC3\xBC\xC3\x9F"
              "e \xF0\x9F\x94\x91 \xEF\xBF\xBD");
}

}  // namespace
}  // namespace orvo
