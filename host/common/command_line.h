#pragma once

#include <CLI/CLI.hpp>
#include <optional>

namespace orvo {

// A program's command line. To the program's own options it adds --help and --version; what is
// called in a wrong way is told in one sentence, with where the help is.
//
//     CommandLine line("orvo-web", "Serves a folder of server pages.");
//     line.add_option("SITE", site, "The folder")->required();
//     if (const std::optional<int> code = line.read(count, words)) return *code;
//
// From the same description the manual page is written (manual_page.h). There, what stands in the
// footer after a line such as "Examples:" is a chapter.
class CommandLine : public CLI::App {
public:
    CommandLine(const std::string& program, const std::string& description);

    // The exit code, where that was all: 0 after help or version, 2 after a mistake.
    std::optional<int> read(std::vector<std::string> words);
    std::optional<int> read(int count, char** words);

    // The program and the commands that were read: "orvo directory import".
    std::string words_read() const;
};

inline constexpr int misused = 2;

// What stands for the option's value: "PORT".
std::string value_name(const CLI::Option& option);

// "1.1.0"
std::string version();

}  // namespace orvo
