#include "suite/log/log_target.h"
#include "tests/support/environment.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

class LogTargetTest : public testing::Test {
private:
    Environment file_{"ORVO_LOG_FILE", std::nullopt};
    Environment standard_error_{"ORVO_LOG_STDERR", std::nullopt};
    Environment level_{"ORVO_LOG_LEVEL", std::nullopt};
    Environment state_{"XDG_STATE_HOME", std::nullopt};
    Environment local_{"LOCALAPPDATA", std::nullopt};
    Environment home_{"HOME", "/home/somebody"};
};

TEST_F(LogTargetTest, IsTheUsersStateFolderWithoutAWish) {
    const LogTarget target = log_target_of({});
    EXPECT_EQ(target.file, "/home/somebody/.local/state/orvo/orvo.log");
    EXPECT_FALSE(target.standard_error);
    EXPECT_EQ(target.largest_file, 5242880u);
    EXPECT_EQ(target.file_count, 3u);
}

TEST_F(LogTargetTest, FollowsTheStateFolderOfTheEnvironmentWhenItIsAbsolute) {
    const Environment absolute("XDG_STATE_HOME", "/var/state");
    EXPECT_EQ(log_target_of({}).file, "/var/state/orvo/orvo.log");
    const Environment relative("XDG_STATE_HOME", "state");
    EXPECT_EQ(log_target_of({}).file, "/home/somebody/.local/state/orvo/orvo.log");
}

TEST_F(LogTargetTest, IsWhereWindowsKeepsWhatBelongsToOneUserOfOneMachine) {
    const Environment local("LOCALAPPDATA", "/users/somebody/local");
    EXPECT_EQ(log_target_of({}).file, "/users/somebody/local/orvo/orvo.log");
}

TEST_F(LogTargetTest, KeepsAFileNameBeyondAscii) {
    const Environment file("ORVO_LOG_FILE", "/var/log/\xD0\x96.log");
    EXPECT_EQ(log_target_of({}).file, u"/var/log/\u0416.log");
}

TEST_F(LogTargetTest, IsTheFileOfTheEnvironmentAlone) {
    const Environment file("ORVO_LOG_FILE", "/var/log/orvo.log");
    const LogTarget target = log_target_of({});
    EXPECT_EQ(target.file, "/var/log/orvo.log");
    EXPECT_FALSE(target.standard_error);
}

TEST_F(LogTargetTest, IsTheStandardErrorAloneWhenOnlyThatIsAskedFor) {
    const Environment standard_error("ORVO_LOG_STDERR", "1");
    const LogTarget target = log_target_of({});
    EXPECT_EQ(target.file, "");
    EXPECT_TRUE(target.standard_error);
}

TEST_F(LogTargetTest, IsBothWhenBothAreAskedFor) {
    const Environment file("ORVO_LOG_FILE", "/var/log/orvo.log");
    const Environment standard_error("ORVO_LOG_STDERR", "1");
    const LogTarget target = log_target_of({});
    EXPECT_EQ(target.file, "/var/log/orvo.log");
    EXPECT_TRUE(target.standard_error);
}

TEST_F(LogTargetTest, IsTheStandardErrorWhereThereIsNoHome) {
    const Environment home("HOME", std::nullopt);
    const LogTarget target = log_target_of({});
    EXPECT_EQ(target.file, "");
    EXPECT_TRUE(target.standard_error);
}

TEST_F(LogTargetTest, LeavesNotesOutOnlyWhenErrorsAloneAreAskedFor) {
    EXPECT_TRUE(log_notes_of_environment());
    for (const char* level : {"note", "", "errors"})
        EXPECT_TRUE((Environment("ORVO_LOG_LEVEL", level), log_notes_of_environment())) << level;
    const Environment error("ORVO_LOG_LEVEL", "error");
    EXPECT_FALSE(log_notes_of_environment());
}

}  // namespace
}  // namespace orvo
