// What all programs have in common, as a person who runs them meets it.

#include <gmock/gmock.h>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class EveryProgram : public testing::TestWithParam<std::string> {
protected:
    std::string run(const std::string& argument) {
        const std::filesystem::path log = folder.path() / argument;
        code = ChildProcess({ORVO_BIN "/" + GetParam(), argument}, log).wait();
        return content_of(log);
    }

    TempFolder folder;
    int code = -1;
};

TEST_P(EveryProgram, TellsItsVersionAndHowItIsUsed) {
    EXPECT_EQ(run("--version"), GetParam() + " " ORVO_VERSION "\n");
    EXPECT_EQ(code, 0);
    EXPECT_THAT(run("--help"), AllOf(HasSubstr("\nUsage: " + GetParam() + " [OPTION...]"),
                                     HasSubstr("--version")));
    EXPECT_EQ(code, 0);
}

TEST_P(EveryProgram, SaysInASentenceWhatIsWrongWithItsArguments) {
    const std::string told = run("--no-such-option");
    EXPECT_THAT(
        told, AllOf(StartsWith(GetParam() + ": "), EndsWith("; see " + GetParam() + " --help\n")));
    EXPECT_EQ(std::ranges::count(told, '\n'), 1);
    EXPECT_EQ(code, 2);
}

INSTANTIATE_TEST_SUITE_P(Programs, EveryProgram,
                         testing::Values("orvo", "orvo-idl", "orvo-register", "orvo-script",
                                         "orvo-web"),
                         [](const auto& program) {
                             std::string name = program.param;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
}  // namespace orvo
