#include "suite/log/suite_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "platform/values/failure.h"
#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;
using testing::MatchesRegex;

constexpr const char* stamp_pattern =
    "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}[+-][0-9]{2}:[0-9]{2} ";

class SuiteLogTest : public testing::Test {
protected:
    static Variant write(Text source, Text message, std::int32_t level) {
        return SuiteLog().LogMessage(source, message, level);
    }

    TempFolder folder_;
    fs::path file_ = folder_.path() / "orvo.log";
    Environment target_{"ORVO_LOG_FILE", file_.string()};
    Environment standard_error_{"ORVO_LOG_STDERR", std::nullopt};
    Environment level_{"ORVO_LOG_LEVEL", std::nullopt};
};

TEST_F(SuiteLogTest, WritesAnEntryAndAnswersAnEmptyValue) {
    EXPECT_EQ(write(u"OrvoMembership.User.BindAs", u"\r\nERROR 0x5\r\n METHOD: m\r\n", 0),
              Variant());
    EXPECT_THAT(content_of(file_),
                MatchesRegex(std::string(stamp_pattern) + "error OrvoMembership.User.BindAs:\n"
                                                          "    ERROR 0x5\n"
                                                          "     METHOD: m\n"));
}

TEST_F(SuiteLogTest, LeavesItsArgumentsAsTheyAre) {
    Text source = u"A\r\n", message = u"\r\nm\r\n";
    std::int32_t level = 9;
    SuiteLog log;
    log.LogMessage(source, message, level);
    log.LogMessageAlternate(source, message, level);
    EXPECT_EQ(source, u"A\r\n");
    EXPECT_EQ(message, u"\r\nm\r\n");
    EXPECT_EQ(level, 9);
}

TEST_F(SuiteLogTest, MarksTheAlternateOperation) {
    Text source = u"A", message = u"m";
    std::int32_t level = 1;
    EXPECT_EQ(SuiteLog().LogMessageAlternate(source, message, level), Variant());
    EXPECT_THAT(content_of(file_),
                MatchesRegex(std::string(stamp_pattern) + "note \\[alternate\\] A: m\n"));
}

TEST_F(SuiteLogTest, WritesErrorsAloneWhenAskedTo) {
    const Environment errors_only("ORVO_LOG_LEVEL", "error");
    write(u"A", u"note", 1);
    write(u"A", u"other", 2);
    EXPECT_FALSE(fs::exists(file_));
    write(u"A", u"error", 0);
    EXPECT_THAT(content_of(file_), MatchesRegex(std::string(stamp_pattern) + "error A: error\n"));
}

TEST_F(SuiteLogTest, FollowsTheEnvironmentFromObjectToObject) {
    write(u"A", u"one", 0);
    const auto other = folder_.path() / "other.log";
    const Environment target("ORVO_LOG_FILE", other.string());
    write(u"A", u"two", 0);
    EXPECT_THAT(content_of(file_), MatchesRegex(std::string(stamp_pattern) + "error A: one\n"));
    EXPECT_THAT(content_of(other), MatchesRegex(std::string(stamp_pattern) + "error A: two\n"));
}

TEST_F(SuiteLogTest, RaisesAFailureThatNamesTheFileItCannotWrite) {
    const Environment target("ORVO_LOG_FILE", folder_.path().string());
    try {
        write(u"A", u"lost", 0);
        FAIL() << "nothing was raised";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 75);
        EXPECT_EQ(failure.source, u"Quendra.Log");
        EXPECT_EQ(to_utf8(failure.description),
                  folder_.path().string() + ": the log cannot be written (Is a directory)");
    }
}

TEST_F(SuiteLogTest, ObjectsOfTwoThreadsShareTheFile) {
    const auto write_many = [] {
        for (int i = 0; i < 100; ++i) write(u"A", u"m", 0);
    };
    std::thread other(write_many);
    write_many();
    other.join();
    EXPECT_THAT(content_of(file_),
                MatchesRegex("(" + std::string(stamp_pattern) + "error A: m\n){200}"));
}

}  // namespace
}  // namespace orvo
