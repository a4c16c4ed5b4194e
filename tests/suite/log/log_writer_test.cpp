#include "suite/log/log_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <ctime>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/values/failure.h"
#include "tests/support/environment.h"
#include "tests/support/lowered_limit.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

// 2024-05-06T07:08:09.123Z
constexpr std::chrono::system_clock::time_point moment{milliseconds{1714979289123}};

class LogWriterTest : public testing::Test {
protected:
    LogWriterTest() { tzset(); }

    static void expect_failure(LogWriter& writer, const std::string& description) {
        try {
            writer.write_error(moment, "lost");
            FAIL() << "nothing was raised; expected: " << description;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number, 75);
            EXPECT_EQ(failure.source, u"Quendra.Log");
            EXPECT_EQ(to_utf8(failure.description), description);
        }
    }

    Environment zone_{"TZ", "UTC0"};
    TempFolder folder_;
    fs::path file_ = folder_.path() / "log" / "orvo.log";
};

TEST_F(LogWriterTest, WritesATimeStampAndTheEntry) {
    LogWriter writer({file_});
    writer.write_error(moment, "error A: one");
    writer.write_error(moment + milliseconds(7), "note B:\n    two\n    three");
    EXPECT_EQ(content_of(file_),
              "2024-05-06T07:08:09.123+00:00 error A: one\n"
              "2024-05-06T07:08:09.130+00:00 note B:\n    two\n    three\n");
}

TEST_F(LogWriterTest, WritesLocalTimeWithItsOffset) {
    const Environment zone("TZ", "XXX-5:30");
    tzset();
    LogWriter({file_}).write_error(moment, "error A: one");
    EXPECT_EQ(content_of(file_), "2024-05-06T12:38:09.123+05:30 error A: one\n");
}

TEST_F(LogWriterTest, AppendsToAFileThatIsThere) {
    folder_.write("log/orvo.log", "before\n");
    LogWriter({file_}).write_error(moment, "error A: one");
    EXPECT_EQ(content_of(file_), "before\n2024-05-06T07:08:09.123+00:00 error A: one\n");
}

TEST_F(LogWriterTest, AnEntryIsNeverTakenForAPattern) {
    LogWriter({file_}).write_error(moment, "error A: {} {0} %v %Y %s");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.123+00:00 error A: {} {0} %v %Y %s\n");
}

TEST_F(LogWriterTest, RenamesAFullFileAndKeepsAsManyAsAskedFor) {
    LogWriter writer({file_, false, 70, 3});  // two entries of 34 bytes fit
    for (const char* entry : {"1...", "2...", "3...", "4...", "5...", "6...", "7..."})
        writer.write_error(moment, entry);
    const std::string stamp = "2024-05-06T07:08:09.123+00:00 ";
    EXPECT_EQ(content_of(file_), stamp + "7...\n");
    EXPECT_EQ(content_of(folder_.path() / "log/orvo.1.log"), stamp + "5...\n" + stamp + "6...\n");
    EXPECT_EQ(content_of(folder_.path() / "log/orvo.2.log"), stamp + "3...\n" + stamp + "4...\n");
    EXPECT_FALSE(fs::exists(folder_.path() / "log/orvo.3.log"));
}

TEST_F(LogWriterTest, AnEntryLargerThanAFileIsWrittenWhole) {
    LogWriter writer({file_, false, 70, 2});
    const std::string large(500, 'x');
    writer.write_error(moment, "before");
    writer.write_error(moment, large);
    writer.write_error(moment, "behind");
    EXPECT_EQ(content_of(folder_.path() / "log/orvo.1.log"),
              "2024-05-06T07:08:09.123+00:00 " + large + "\n");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.123+00:00 behind\n");
}

TEST_F(LogWriterTest, OneFileAloneIsBegunAnewWhenItIsFull) {
    LogWriter writer({file_, false, 70, 1});
    for (const char* entry : {"1...", "2...", "3..."}) writer.write_error(moment, entry);
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.123+00:00 3...\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(file_.parent_path()), {}), 1);
}

TEST_F(LogWriterTest, WritesToANewFileWhereTheOldOneWasRenamed) {
    LogWriter writer({file_});
    writer.write_error(moment, "one");
    fs::rename(file_, folder_.path() / "moved");
    writer.write_error(moment, "two");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.123+00:00 two\n");
    EXPECT_EQ(content_of(folder_.path() / "moved"), "2024-05-06T07:08:09.123+00:00 one\n");
}

TEST_F(LogWriterTest, AnErrorGoesToTheNewFileAtOnceAndNotesWithIt) {
    LogWriter writer({file_});
    writer.write_note(moment, "one");
    fs::rename(file_, folder_.path() / "moved");
    writer.write_error(moment + milliseconds(1), "two");
    writer.write_note(moment + milliseconds(2), "three");
    EXPECT_EQ(content_of(file_),
              "2024-05-06T07:08:09.124+00:00 two\n2024-05-06T07:08:09.125+00:00 three\n");
    EXPECT_EQ(content_of(folder_.path() / "moved"), "2024-05-06T07:08:09.123+00:00 one\n");
}

TEST_F(LogWriterTest, ANoteGoesToTheNewFileOnceTheLastLookIsOld) {
    LogWriter writer({file_});
    writer.write_error(moment, "one");
    fs::rename(file_, folder_.path() / "moved");
    writer.write_note(moment + LogWriter::look_lasts - milliseconds(1), "two");
    writer.write_note(moment + LogWriter::look_lasts, "three");
    EXPECT_EQ(content_of(folder_.path() / "moved"),
              "2024-05-06T07:08:09.123+00:00 one\n2024-05-06T07:08:09.222+00:00 two\n");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.223+00:00 three\n");
}

TEST_F(LogWriterTest, ANoteLooksWhereTheClockWasSetBack) {
    LogWriter writer({file_});
    writer.write_note(moment, "one");
    fs::rename(file_, folder_.path() / "moved");
    writer.write_note(moment - milliseconds(1), "two");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.122+00:00 two\n");
}

// A file that somebody else has begun anew meanwhile is not full.
TEST_F(LogWriterTest, ANoteThatWouldFillTheFileLooksBeforeItIsRenamed) {
    LogWriter writer({file_, false, 70, 3});
    writer.write_note(moment, "1...");
    fs::rename(file_, folder_.path() / "moved");
    folder_.write("log/orvo.log", "begun\n");
    for (const char* entry : {"2...", "3..."}) writer.write_note(moment, entry);
    const std::string stamp = "2024-05-06T07:08:09.123+00:00 ";
    EXPECT_EQ(content_of(folder_.path() / "moved"), stamp + "1...\n" + stamp + "2...\n");
    EXPECT_EQ(content_of(file_), "begun\n" + stamp + "3...\n");
    EXPECT_FALSE(fs::exists(folder_.path() / "log/orvo.1.log"));
}

TEST_F(LogWriterTest, NotesFillFilesAsErrorsDo) {
    LogWriter writer({file_, false, 70, 3});
    for (const char* entry : {"1...", "2...", "3...", "4...", "5..."})
        writer.write_note(moment, entry);
    const std::string stamp = "2024-05-06T07:08:09.123+00:00 ";
    EXPECT_EQ(content_of(file_), stamp + "5...\n");
    EXPECT_EQ(content_of(folder_.path() / "log/orvo.1.log"), stamp + "3...\n" + stamp + "4...\n");
    EXPECT_EQ(content_of(folder_.path() / "log/orvo.2.log"), stamp + "1...\n" + stamp + "2...\n");
}

// Without a free descriptor no file can be opened anew.
TEST_F(LogWriterTest, KeepsAFileOpenThatNobodyElseTouches) {
    LogWriter writer({file_});
    writer.write_error(moment, "one");
    const LoweredLimit none(RLIMIT_NOFILE, 0);
    EXPECT_NO_THROW(writer.write_error(moment, "two"));
    EXPECT_NO_THROW(writer.write_error(moment, "three"));
}

TEST_F(LogWriterTest, KeepsAFileOpenThatItBeganBecauseTheFormerWasFull) {
    LogWriter writer({file_, false, 70, 3});
    for (const char* entry : {"1...", "2...", "3..."}) writer.write_error(moment, entry);
    const LoweredLimit none(RLIMIT_NOFILE, 0);
    EXPECT_NO_THROW(writer.write_error(moment, "4..."));
}

TEST_F(LogWriterTest, TwoWritersOfOneFileKeepTheSizeTogether) {
    LogWriter first({file_, false, 70, 9}), second({file_, false, 70, 9});
    for (int i = 0; i < 8; ++i) (i % 2 ? first : second).write_error(moment, "1...");
    for (const auto& file : fs::directory_iterator(file_.parent_path()))
        EXPECT_EQ(file.file_size(), 70u) << file.path();
    EXPECT_EQ(std::distance(fs::directory_iterator(file_.parent_path()), {}), 4);
}

TEST_F(LogWriterTest, WritesToTheStandardErrorToo) {
    testing::internal::CaptureStderr();
    LogWriter({file_, true}).write_error(moment, "error A: one");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "2024-05-06T07:08:09.123+00:00 error A: one\n");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.123+00:00 error A: one\n");
}

TEST_F(LogWriterTest, WritesToTheStandardErrorAlone) {
    testing::internal::CaptureStderr();
    LogWriter({"", true}).write_error(moment, "error A: one");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "2024-05-06T07:08:09.123+00:00 error A: one\n");
}

TEST_F(LogWriterTest, AFolderInThePlaceOfTheFileIsAFailureAndTheNextEntryTriesAgain) {
    fs::create_directories(file_);
    LogWriter writer({file_});
    expect_failure(writer, file_.string() + ": the log cannot be written (Is a directory)");
    fs::remove(file_);
    writer.write_error(moment, "one");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.123+00:00 one\n");
}

TEST_F(LogWriterTest, AFolderThatCannotBeMadeIsAFailure) {
    folder_.write("log", "a file in the way");
    LogWriter writer({file_});
    expect_failure(writer, file_.string() + ": the log cannot be written (Not a directory)");
}

TEST_F(LogWriterTest, AFullDiskIsAFailureEveryTime) {
    LogWriter writer({"/dev/full"});
    for (int i = 0; i < 2; ++i)
        expect_failure(writer,
                       "/dev/full: the log cannot be written (Failed flush to file /dev/full: "
                       "No space left on device)");
}

TEST_F(LogWriterTest, AnEntryThatFailedIsNotWrittenLater) {
    LogWriter writer({file_});
    writer.write_error(moment, "one");
    {
        const auto before = std::signal(SIGXFSZ, SIG_IGN);
        const LoweredLimit full(RLIMIT_FSIZE, fs::file_size(file_));
        expect_failure(writer, file_.string() +
                                   ": the log cannot be written (Failed flush to file " +
                                   file_.string() + ": File too large)");
        std::signal(SIGXFSZ, before);
    }
    writer.write_error(moment, "two");
    EXPECT_EQ(content_of(file_),
              "2024-05-06T07:08:09.123+00:00 one\n2024-05-06T07:08:09.123+00:00 two\n");
}

TEST_F(LogWriterTest, ANewFileThatCannotBeOpenedIsAFailureAndTheNextEntryTriesAgain) {
    LogWriter writer({file_, false, 70, 2});
    writer.write_error(moment, "1...");
    writer.write_error(moment, "2...");
    {
        const LoweredLimit none(RLIMIT_NOFILE, 0);
        expect_failure(writer, file_.string() +
                                   ": the log cannot be written (Failed opening file " +
                                   file_.string() + " for writing: Too many open files)");
    }
    writer.write_error(moment, "3...");
    EXPECT_EQ(content_of(file_), "2024-05-06T07:08:09.123+00:00 3...\n");
}

TEST_F(LogWriterTest, AFileThatCannotBeRenamedIsAFailureAndTheNextEntryTriesAgain) {
    folder_.write("log/orvo.1.log/child", "a folder in the way");
    LogWriter writer({file_, false, 70, 2});
    writer.write_error(moment, "1...");
    writer.write_error(moment, "2...");
    const auto target = (folder_.path() / "log/orvo.1.log").string();
    expect_failure(writer, file_.string() +
                               ": the log cannot be written (rotating_file_sink: failed renaming " +
                               file_.string() + " to " + target + ": Is a directory)");
    fs::remove_all(target);
    writer.write_error(moment, "3...");
    EXPECT_THAT(content_of(file_), testing::EndsWith(" 3...\n"));
}

TEST_F(LogWriterTest, TheStandardErrorShowsAnEntryThatTheFileRefuses) {
    fs::create_directories(file_);
    LogWriter writer({file_, true});
    testing::internal::CaptureStderr();
    EXPECT_THROW(writer.write_error(moment, "error A: one"), Failure);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "2024-05-06T07:08:09.123+00:00 error A: one\n");
}

TEST_F(LogWriterTest, ManyThreadsWriteWholeEntries) {
    constexpr int threads_count = 4, entries_count = 200;
    const LogTarget target{file_, false, 4096, 100};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threads_count; ++thread)
        threads.emplace_back([&, thread] {
            for (int i = 0; i < entries_count; ++i)
                log_writer_for(target).write_error(
                    moment, std::to_string(thread) + "/" + std::to_string(i) + "\n    more");
        });
    for (auto& thread : threads) thread.join();

    std::multiset<std::string> seen;
    for (const auto& file : fs::directory_iterator(file_.parent_path())) {
        std::istringstream lines(content_of(file.path()));
        for (std::string line; std::getline(lines, line);) {
            ASSERT_TRUE(line.starts_with("2024-05-06T07:08:09.123+00:00 ")) << line;
            seen.insert(line.substr(30));
            ASSERT_TRUE(std::getline(lines, line));
            ASSERT_EQ(line, "    more");
        }
    }
    EXPECT_EQ(seen.size(), std::size_t{threads_count * entries_count});
    for (int thread = 0; thread < threads_count; ++thread)
        for (int i = 0; i < entries_count; ++i)
            EXPECT_EQ(seen.count(std::to_string(thread) + "/" + std::to_string(i)), 1u);
}

TEST(LogWriterFor, AnswersOneWriterForOneTarget) {
    EXPECT_EQ(&log_writer_for({"/x/a.log"}), &log_writer_for({"/x/a.log"}));
    EXPECT_NE(&log_writer_for({"/x/a.log"}), &log_writer_for({"/x/b.log"}));
    EXPECT_NE(&log_writer_for({"/x/a.log"}), &log_writer_for({"/x/a.log", true}));
}

}  // namespace
}  // namespace orvo
