// orvo-manual: writes the manual page, or what bash completes, of one of the programs. For the
// build.

#include <functional>
#include <iostream>
#include <map>

#include "host/admin/commands.h"
#include "host/admin/people/common_arguments.h"
#include "host/common/manual_page.h"
#include "host/register/options.h"
#include "host/script/options.h"
#include "host/web/options.h"

namespace {

template <typename Line>
std::unique_ptr<orvo::CommandLine> make() {
    return std::make_unique<Line>();
}

struct Program {
    std::unique_ptr<orvo::CommandLine> (*command_line)();
    const char* see_also;
    std::vector<std::string> completed = {};
};

const std::map<std::string, Program> programs{
    {"orvo",
     {make<orvo::admin::Commands>,
      "orvo-site.ini(5), orvo-web(1)",
      {orvo::admin::user_argument, orvo::admin::role_argument, orvo::admin::profile_argument}}},
    {"orvo-register", {make<orvo::RegisterCommandLine>, "orvo-script(1)"}},
    {"orvo-script", {make<orvo::script::ScriptCommandLine>, "orvo-site.ini(5), orvo-web(1)"}},
    {"orvo-web",
     {make<orvo::web::WebCommandLine>, "orvo-web.service(8), orvo-site.ini(5), orvo(1)"}},
};

}  // namespace

int main(int count, char** words) {
    orvo::CommandLine line("orvo-manual", "Writes what is to be known of a program.");
    std::string name;
    bool is_completion = false;
    std::vector<std::string> names;
    for (const auto& [program, what] : programs) names.push_back(program);
    line.add_option("PROGRAM", name, "The program")->required()->check(CLI::IsMember(names));
    line.add_flag("--completion", is_completion, "What bash completes, instead of the manual page");
    if (const std::optional<int> code = line.read(count, words)) return *code;
    const Program& program = programs.at(name);
    const auto described = program.command_line();
    std::cout << (is_completion ? orvo::bash_completion(*described, program.completed)
                                : orvo::manual_page(*described, program.see_also));
    return std::cout.flush() ? 0 : 1;
}
