#pragma once

#include <functional>
#include <map>

#include "host/common/command_line.h"

namespace orvo::admin {

// orvo's command line. Each room of commands adds its own:
//
//     void add_audit_commands(Program& program) {
//         auto request = std::make_shared<AuditRequest>();
//         CLI::App& audit = program.command(program, "audit", "Show who logged in",
//                                           [request] { return show_audit(*request); });
//         audit.add_option("--user", request->user, "Of this user alone")->type_name("NAME");
//     }
//
// From the same description come --help, the manual page and what bash completes.
class Program : public CommandLine {
public:
    // What a command does; its exit code (exit_codes.h). What it raises is told on standard error.
    using Action = std::function<int()>;

    using CommandLine::CommandLine;

    // A word behind which commands stand, one of which has to follow.
    CLI::App& group(CLI::App& parent, const std::string& name, const std::string& description);
    CLI::App& command(CLI::App& parent, const std::string& name, const std::string& description,
                      Action action);

    // Runs the command that was read.
    int run() const;

private:
    std::map<const CLI::App*, Action> actions_;
};

}  // namespace orvo::admin
