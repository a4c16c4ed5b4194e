// What all programs have in common, as a person who runs them meets it.

#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <set>

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

// All that the pattern's first group finds.
std::set<std::string> found_in(const std::string& text, const char* pattern) {
    const std::regex searched(pattern, std::regex::multiline);
    std::set<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), searched), end; at != end; ++at)
        found.insert((*at)[1]);
    return found;
}

class Manual : public testing::TestWithParam<std::string> {};

TEST_P(Manual, AndCompletionHaveWhatHelpHas) {
    const std::string help = output_of({ORVO_BIN "/" + GetParam(), "--help"});
    const std::string page = std::regex_replace(output_of({ORVO_BIN "/orvo-manual", GetParam()}),
                                                std::regex(R"(\\-)"), "-");
    const std::string completed = output_of({ORVO_BIN "/orvo-manual", "--completion", GetParam()});
    const std::set<std::string> options = found_in(help, "(--[a-z-]+)");
    EXPECT_FALSE(options.empty());
    for (const std::string& option : options) {
        EXPECT_THAT(page, HasSubstr(option));
        EXPECT_THAT(completed, HasSubstr(option));
    }
    for (const std::string& head : found_in(help, "^([A-Z][a-z ]+):$")) {
        if (head == "Arguments" || head == "Subcommands") continue;
        std::string title = head;
        std::ranges::transform(title, title.begin(),
                               [](unsigned char c) { return std::toupper(c); });
        EXPECT_THAT(page, HasSubstr("\n.SH " + title + "\n"));
    }
}

INSTANTIATE_TEST_SUITE_P(Programs, Manual,
                         testing::Values("orvo", "orvo-register", "orvo-script", "orvo-web"),
                         [](const auto& program) {
                             std::string name = program.param;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
}  // namespace orvo
