#include "tests/support/child_process.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>
#include <thread>

#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

const std::vector<std::string> sleeper = {"/bin/sleep", "600"};

TEST(OutputOf, IsWhatTheProgramPrintsOnBothStreams) {
    EXPECT_EQ(output_of({"/bin/sh", "-c", "echo one; echo two >&2"}), "one\ntwo\n");
}

TEST(OutputOf, RaisesWhatAFailingProgramPrinted) {
    try {
        output_of({"/bin/sh", "-c", "echo the reason; exit 3"});
        FAIL() << "nothing raised";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "/bin/sh ended with 3: the reason\n");
    }
}

TEST(OutputOf, RaisesWhenThereIsNoSuchProgram) {
    EXPECT_THROW(output_of({"/no/such/program"}), std::runtime_error);
}

TEST(AChildProcess, GetsNoneOfTheTestsOpenFiles) {
    int open_file = fcntl(0, F_DUPFD, 7);
    ASSERT_GE(open_file, 7);
    const std::string which = std::to_string(open_file);
    EXPECT_EQ(output_of({"/bin/sh", "-c", "test -e /proc/$$/fd/2 && echo there"}), "there\n");
    EXPECT_EQ(output_of({"/bin/sh", "-c", "test ! -e /proc/$$/fd/" + which + " && echo gone"}),
              "gone\n");
    close(open_file);
}

TEST(AChildProcess, EndsWhenAsked) {
    TempFolder folder;
    ChildProcess child(sleeper, folder.path() / "log");
    EXPECT_TRUE(child.running());
    child.terminate(5);
    EXPECT_FALSE(child.running());
    EXPECT_EQ(child.wait(), 128 + SIGTERM);
}

TEST(AChildProcess, IsKilledWhenItDoesNotEndInTime) {
    TempFolder folder;
    ChildProcess child({"/bin/sh", "-c", "trap '' TERM; echo deaf; while :; do :; done"},
                       folder.path() / "log");
    while (std::filesystem::file_size(folder.path() / "log") == 0) std::this_thread::yield();
    child.terminate(0.05);
    EXPECT_EQ(child.wait(), 128 + SIGKILL);
}

TEST(AChildProcess, DoesNotOutliveTheThreadThatStartedIt) {
    TempFolder folder;
    std::unique_ptr<ChildProcess> child;
    std::thread([&] {
        child = std::make_unique<ChildProcess>(sleeper, folder.path() / "log");
    }).join();
    EXPECT_EQ(child->wait(), 128 + SIGKILL);
}

}  // namespace
}  // namespace orvo
