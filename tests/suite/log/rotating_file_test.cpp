#include "suite/log/rotating_file.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <sstream>
#include <system_error>
#include <thread>

#include "tests/support/lowered_limit.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class RotatingFileTest : public testing::Test {
protected:
    std::string content(std::size_t times) const { return content_of(rotated_file(file_, times)); }
    bool exists(std::size_t times) const { return fs::exists(rotated_file(file_, times)); }
    std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        for (std::size_t times = 0; exists(times); ++times) {
            std::istringstream in(content(times));
            for (std::string line; std::getline(in, line);) lines.push_back(line);
        }
        return lines;
    }
    int reason_of_failure(const fs::path& file, std::string_view line) {
        try {
            RotatingFile(file, {}).append(line);
        } catch (const std::system_error& failure) {
            return failure.code().value();
        }
        return 0;
    }

    TempFolder folder_;
    const fs::path file_ = folder_.path() / "log" / "audit.jsonl";
};

TEST_F(RotatingFileTest, MakesTheFileAndItsFolderForOwnerAndGroup) {
    RotatingFile(file_, {}).append("one\n");
    EXPECT_EQ(content(0), "one\n");
    EXPECT_EQ(fs::status(file_).permissions() & fs::perms::others_all, fs::perms::none);
}

TEST_F(RotatingFileTest, GoesOnWhereTheFileEnds) {
    RotatingFile(file_, {}).append("one\n");
    RotatingFile(file_, {}).append("two\n");
    EXPECT_EQ(content(0), "one\ntwo\n");
}

TEST_F(RotatingFileTest, BeginsAnewWhereALineDoesNotFitAndDropsTheOldestFile) {
    RotatingFile file(file_, {.largest = 8, .count = 3});
    for (const char* line : {"one\n", "two\n", "three\n", "four\n", "five\n"}) file.append(line);
    EXPECT_EQ(content(0), "five\n");
    EXPECT_EQ(content(1), "four\n");
    EXPECT_EQ(content(2), "three\n");
    EXPECT_FALSE(exists(3));
}

TEST_F(RotatingFileTest, GivesALineThatIsTooLargeAFileOfItsOwn) {
    RotatingFile file(file_, {.largest = 8, .count = 3});
    for (const char* line : {"one\n", "much too large\n", "two\n"}) file.append(line);
    EXPECT_EQ(content(2), "one\n");
    EXPECT_EQ(content(1), "much too large\n");
    EXPECT_EQ(content(0), "two\n");
}

TEST_F(RotatingFileTest, BeginsAnewWhereSomebodyElseHasMovedOrRemovedTheFile) {
    RotatingFile file(file_, {});
    file.append("one\n");
    fs::rename(file_, folder_.path() / "moved");
    file.append("two\n");
    fs::remove(file_);
    file.append("three\n");
    EXPECT_EQ(content_of(folder_.path() / "moved"), "one\n");
    EXPECT_EQ(content(0), "three\n");
}

// Each process renames the file some fifty times under the other's feet.
TEST_F(RotatingFileTest, TwoProcessesOfTwoThreadsLoseAndTearNoLine) {
    constexpr int lines_of_thread = 500;
    const Rotation rotation{.largest = 1024, .count = 1000};
    const auto write = [&](const std::string& name) {
        RotatingFile file(file_, rotation);
        const auto lines = [&](const std::string& who) {
            for (int i = 0; i < lines_of_thread; ++i)
                file.append(who + ' ' + std::to_string(i) + '\n');
        };
        std::thread other(lines, name + "2");
        lines(name + "1");
        other.join();
    };
    const pid_t child = fork();
    if (child == 0) {
        write("child");
        _exit(0);
    }
    write("parent");
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);

    EXPECT_TRUE(exists(10));
    const auto found = lines();
    std::set<std::string> expected;
    for (const char* who : {"child1", "child2", "parent1", "parent2"})
        for (int i = 0; i < lines_of_thread; ++i)
            expected.insert(std::string(who) + ' ' + std::to_string(i));
    EXPECT_EQ(found.size(), expected.size());
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), expected);
}

TEST_F(RotatingFileTest, TheDiskHasALineBeforeAppendOnDiskReturns) {
    std::vector<std::string> on_disk;
    RotatingFile file(file_, {}, [&](const AppendHandle& handle) {
        handle.sync();
        on_disk.push_back(content(0));
    });
    file.append_on_disk("one\n");
    EXPECT_THAT(on_disk, ElementsAre("one\n"));
    file.append("two\n");
    file.append_on_disk("three\n");
    EXPECT_THAT(on_disk, ElementsAre("one\n", "one\ntwo\nthree\n"));
}

TEST_F(RotatingFileTest, WhoWaitsForTheDiskHoldsNobodyUp) {
    RotatingFile* self = nullptr;
    RotatingFile file(file_, {.largest = 4, .count = 3}, [&](const AppendHandle& handle) {
        self->append("two\n");
        handle.sync();  // of a file that has been renamed
    });
    self = &file;
    file.append_on_disk("one\n");
    EXPECT_THAT(lines(), ElementsAre("two", "one"));
}

TEST_F(RotatingFileTest, SaysWhyItCannotWrite) {
    EXPECT_EQ(reason_of_failure("/dev/full", "one\n"), ENOSPC);
    EXPECT_EQ(reason_of_failure(folder_.path(), "one\n"), EISDIR);
    fs::create_symlink("elsewhere", folder_.path() / "link");
    EXPECT_EQ(reason_of_failure(folder_.path() / "link", "one\n"), ELOOP);
    EXPECT_FALSE(fs::exists(folder_.path() / "elsewhere"));
}

TEST_F(RotatingFileTest, ALineThatIsWrittenInPartIsTakenBack) {
    RotatingFile file(file_, {});
    file.append("one\n");
    {
        const LoweredLimit limit(RLIMIT_FSIZE, 10);
        EXPECT_THROW(file.append("twenty characters..\n"), std::system_error);
    }
    EXPECT_EQ(content(0), "one\n");
    file.append("two\n");
    EXPECT_EQ(content(0), "one\ntwo\n");
}

}  // namespace
}  // namespace orvo
