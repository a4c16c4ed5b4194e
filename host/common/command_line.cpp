#include "host/common/command_line.h"

#include <iostream>
#include <ranges>

namespace orvo {
namespace {

class Help : public CLI::Formatter {
public:
    Help() {
        label("OPTIONS", "OPTION...");
        label("SUBCOMMAND", "COMMAND");
        label("Positionals", "Arguments");
        column_width(28);
    }

private:
    std::string make_option_opts(const CLI::Option* option) const override {
        const bool has_value = option->get_type_size() != 0 && !option->get_positional();
        return has_value ? " " + value_name(*option) : "";
    }
    std::string make_option_desc(const CLI::Option* option) const override {
        const std::string otherwise = option->get_default_str();
        return option->get_description() + (otherwise.empty() ? "" : " (" + otherwise + ")");
    }
};

}  // namespace

CommandLine::CommandLine(const std::string& program, const std::string& description)
    : App(description, program) {
    formatter(std::make_shared<Help>());
    set_help_flag("-h,--help", "Show this, and end");
    set_version_flag("--version", program + " " + orvo::version(), "Show the version, and end");
}

std::optional<int> CommandLine::read(std::vector<std::string> words) {
    // As the library takes them.
    std::ranges::reverse(words);
    try {
        parse(std::move(words));
        return std::nullopt;
    } catch (const CLI::CallForHelp&) {
        std::cout << help();
    } catch (const CLI::CallForVersion& asked) {
        std::cout << asked.what() << '\n';
    } catch (const CLI::ParseError& mistake) {
        std::cerr << get_name() << ": " << mistake.what() << "; see " << words_read()
                  << " --help\n";
        return misused;
    }
    return std::cout.flush() ? 0 : 1;
}

std::optional<int> CommandLine::read(int count, char** words) {
    return read(std::vector<std::string>(words + 1, words + count));
}

std::string CommandLine::words_read() const {
    std::string words = get_name();
    for (const CLI::App* at = this; !at->get_subcommands().empty();) {
        at = at->get_subcommands().front();
        words += " " + at->get_name();
    }
    return words;
}

std::string value_name(const CLI::Option& option) {
    const std::string name = option.get_type_name();
    return name.substr(0, name.find(':'));
}

std::string version() { return ORVO_VERSION; }

}  // namespace orvo
