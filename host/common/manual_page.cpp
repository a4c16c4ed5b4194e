#include "host/common/manual_page.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>

#include "host/common/command_line.h"

namespace orvo {
namespace {

using Commands = std::vector<const CLI::App*>;

std::vector<const CLI::Option*> positionals_of(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}
std::vector<const CLI::Option*> options_of(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

std::string spelled(std::string text, char first) {
    if (!text.empty()) text[0] = first;
    return text;
}

std::string in_capitals(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

// As the formatter of manuals takes it literally.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else if (c == '\'' && result.empty())
            result += "\\(aq";
        else
            result += c;
    }
    return result.starts_with('.') ? "\\&" + result : result;
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }

std::string usage(const CLI::App& app, const std::string& command) {
    std::string line = bold(command) + " [" + italic("OPTION") + "...]";
    for (const CLI::Option* option : positionals_of(app)) {
        std::string word = italic(option->get_name(true, false));
        if (option->get_expected_max() >= CLI::detail::expected_max_vector_size) word += "...";
        line += " " + (option->get_required() ? word : "[" + word + "]");
    }
    if (!app.get_subcommands({}).empty()) line += " " + italic("COMMAND");
    return line;
}

// Options of a group of their own are told once, in a chapter of that name.
bool is_common(const CLI::Option* option) {
    return option->nonpositional() && option->get_group() != "Options";
}

void row(std::ostream& out, const std::string& head, const std::string& text) {
    out << ".TP\n" << head << '\n' << text << '\n';
}

void row_of(std::ostream& out, const CLI::Option& option) {
    std::string head = bold(option.get_name(false, true));
    if (const std::string value = value_name(option); !value.empty()) head += " " + italic(value);
    const std::string otherwise = option.get_default_str();
    row(out, head,
        escaped(option.get_description()) + "." +
            (otherwise.empty() ? "" : " Without it: " + escaped(otherwise) + "."));
}

void rows_of_options(std::ostream& out, const CLI::App& app) {
    for (const CLI::Option* option : positionals_of(app))
        row(out, italic(option->get_name(true, false)), escaped(option->get_description()) + ".");
    for (const CLI::Option* option : options_of(app))
        if (!is_common(option) && !(app.get_parent() && option == app.get_help_ptr()))
            row_of(out, *option);
    std::string common;
    for (const CLI::Option* option : options_of(app))
        if (is_common(option))
            common += (common.empty() ? "" : ", ") + bold(option->get_name(false, true));
    if (!common.empty()) out << ".PP\nAnd " << common << ".\n";
}

// By their groups and names.
using CommonOptions = std::map<std::string, std::map<std::string, const CLI::Option*>>;

void find_common_options(const CLI::App& app, CommonOptions& found) {
    for (const CLI::Option* option : options_of(app))
        if (is_common(option))
            found[option->get_group()].try_emplace(option->get_name(false, true), option);
    for (const CLI::App* below : app.get_subcommands({})) find_common_options(*below, found);
}

// The footer: prose, and chapters of rows with two blanks between name and text.
void chapters(std::ostream& out, const std::string& footer) {
    std::istringstream lines(footer);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t gap = line.find("  ", 2);
        if (line.empty()) {
            out << ".PP\n";
        } else if (line.starts_with("  ") && gap != std::string::npos) {
            row(out, bold(line.substr(2, gap - 2)),
                escaped(line.substr(line.find_first_not_of(' ', gap))));
        } else if (line.ends_with(':') && !line.starts_with(' ')) {
            line.pop_back();
            out << ".SH " << in_capitals(line) << '\n';
        } else {
            out << escaped(line.substr(std::min(line.size(), line.find_first_not_of(' ')))) << '\n';
        }
    }
}

void commands_below(std::ostream& out, const CLI::App& app, const std::string& command) {
    for (const CLI::App* below : app.get_subcommands({})) {
        const std::string name = command + " " + below->get_name();
        if (below->get_subcommands({}).empty()) {
            out << ".SS " << usage(*below, name) << '\n'
                << escaped(below->get_description()) << ".\n";
            rows_of_options(out, *below);
        } else {
            commands_below(out, *below, name);
        }
    }
}

std::string words_of(const CLI::App& app) {
    std::string words;
    for (const CLI::App* below : app.get_subcommands({})) words += below->get_name() + " ";
    for (const CLI::Option* option : options_of(app))
        for (const std::string& name : option->get_lnames()) words += "--" + name + " ";
    if (!words.empty()) words.pop_back();
    return words;
}

// The cases of a completion function's questions, for all commands.
struct CompletionCases {
    const std::vector<std::string>& kinds;
    std::string steps;   // into which command a word leads
    std::string words;   // what may stand in a command
    std::string values;  // of which kind an option's value is, or an argument

    void add(const CLI::App& app, const std::string& path) {
        words += "        '" + path + "') words='" + words_of(app) + "' ;;\n";
        for (const CLI::Option* option : options_of(app))
            if (option->get_type_size() != 0)
                for (const std::string& name : option->get_lnames())
                    add_value("'" + path + " --" + name + "'", *option);
        for (const CLI::Option* option : positionals_of(app))
            if (is_completed(*option)) add_value("'" + path + " '*", *option);
        for (const CLI::App* below : app.get_subcommands({})) {
            const std::string deeper = path + " " + below->get_name();
            steps += "            '" + deeper + "') path='" + deeper + "' ;;\n";
            add(*below, deeper);
        }
    }

private:
    bool is_completed(const CLI::Option& option) const {
        return std::ranges::find(kinds, value_name(option)) != kinds.end();
    }
    void add_value(const std::string& pattern, const CLI::Option& option) {
        if (kinds.empty()) return;
        values += "        " + pattern +
                  ") kind=" + (is_completed(option) ? value_name(option) : std::string("none")) +
                  " ;;\n";
    }
};

// Where a name is expected, the program is asked for names, of the site that the line names.
std::string names_of_kinds(const std::string& program, const std::string& values) {
    return "    local kind= site=() current=\"${COMP_WORDS[COMP_CWORD]}\" at\n"
           "    case \"$path ${COMP_WORDS[COMP_CWORD-1]}\" in\n" +
           values +
           "    esac\n"
           "    [[ $kind != none ]] || return 0\n"
           "    if [[ $kind && $current != -* ]]; then\n"
           "        for ((at = 1; at < COMP_CWORD - 1; at++)); do\n"
           "            [[ ${COMP_WORDS[at]} != --site ]] || site=(--site "
           "\"${COMP_WORDS[at+1]}\")\n"
           "        done\n"
           "        mapfile -t COMPREPLY < <(" +
           program +
           " completion \"${site[@]}\" -- \"$kind\" \"${current//\\\\/}\" 2>/dev/null |\n"
           "            while IFS= read -r word; do printf '%q\\n' \"$word\"; done)\n"
           "        return 0\n"
           "    fi\n";
}

}  // namespace

std::string manual_page(const CLI::App& program, const std::string& see_also) {
    const std::string name = program.get_name();
    std::string description = program.get_description();
    std::ostringstream out;
    out << ".TH " << escaped(in_capitals(name)) << " 1 \"\" \"OrvoMembership " << version()
        << "\"\n"
        << ".SH NAME\n"
        << escaped(name) << " \\- "
        << escaped(spelled(description.substr(0, description.size() - 1),
                           static_cast<char>(std::tolower(description.front()))))
        << "\n.SH SYNOPSIS\n"
        << usage(program, name) << "\n.SH DESCRIPTION\n";
    const std::string footer = program.get_footer();
    const std::size_t first_chapter = footer.find(":\n");
    const std::size_t line =
        first_chapter == std::string::npos ? footer.size() : footer.rfind('\n', first_chapter) + 1;
    out << escaped(description) << '\n';
    chapters(out, footer.substr(0, line));
    out << ".SH OPTIONS\n";
    rows_of_options(out, program);
    if (!program.get_subcommands({}).empty()) {
        out << ".SH COMMANDS\n";
        commands_below(out, program, name);
    }
    CommonOptions common;
    find_common_options(program, common);
    for (const auto& [chapter, options] : common) {
        out << ".SH " << in_capitals(chapter) << '\n';
        for (const auto& [option_name, option] : options) row_of(out, *option);
    }
    chapters(out, footer.substr(line));
    out << ".SH SEE ALSO\n" << escaped(see_also) << '\n';
    return out.str();
}

std::string bash_completion(const CLI::App& program, const std::vector<std::string>& kinds) {
    CompletionCases cases{kinds, {}, {}, {}};
    cases.add(program, "");
    std::string function = "_" + program.get_name();
    std::ranges::replace(function, '-', '_');
    std::string loop;
    if (!cases.steps.empty())
        loop =
            "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
            "        case \"$path $word\" in\n" +
            cases.steps +
            "        esac\n"
            "    done\n";
    return function +
           "() {\n"
           "    local word path= words=\n" +
           loop + (kinds.empty() ? "" : names_of_kinds(program.get_name(), cases.values)) +
           "    case \"$path\" in\n" + cases.words +
           "    esac\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\")\n"
           "}\n"
           "complete -o default -F " +
           function + " " + program.get_name() + "\n";
}

}  // namespace orvo
