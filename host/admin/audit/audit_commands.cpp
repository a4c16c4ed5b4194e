#include "host/admin/audit/audit_commands.h"

#include <memory>

#include "host/admin/audit/show_audit.h"
#include "host/admin/common/program.h"

namespace orvo::admin {
namespace {

void add_names(CLI::App& audit, const char* option, std::vector<std::string>& names,
               const char* type, const char* about) {
    audit.add_option(option, names, about)
        ->type_name(type)
        ->delimiter(',')
        ->allow_extra_args(false);
}

void add_time(CLI::App& audit, const char* option,
              std::optional<std::chrono::system_clock::time_point>& time, const char* about) {
    const auto read = [](const std::string& text) {
        return try_time_or_age(text, std::chrono::system_clock::now());
    };
    audit
        .add_option_function<std::string>(
            option, [&time, read](const std::string& text) { time = read(text); }, about)
        ->type_name("TIME")
        ->check(CLI::Validator(
            [read](const std::string& text) {
                return read(text) ? std::string()
                                  : text + " is no time such as 2026-11-22T12:34Z, 2h or 7d";
            },
            ""));
}

}  // namespace

void add_audit_commands(Program& program) {
    const auto request = std::make_shared<AuditRequest>();
    CLI::App& audit =
        program.command(program, "audit", "Show who logged in, failed, and changed what",
                        [request] { return show_audit(*request); });
    audit.add_option("--user", request->users, "Of these users alone: jsmith")
        ->type_name("NAME")
        ->allow_extra_args(false);
    audit.add_option("--by", request->by, "Done by these accounts alone")
        ->type_name("NAME")
        ->allow_extra_args(false);
    add_names(audit, "--from", request->from, "ADDRESS",
              "From these addresses; 203.0.113. is the beginning of many");
    add_names(audit, "--event", request->events, "EVENT", "These events alone");
    add_names(audit, "--result", request->results, "RESULT",
              "That ended so: right, wrong, locked, failed, ...");
    add_time(audit, "--since", request->since,
             "Not before this time (UTC), or so long ago: 30m, 2h, 7d");
    add_time(audit, "--until", request->until, "Before this time");
    audit.add_option("--file", request->file, "Read this file, instead of the site's")
        ->type_name("FILE");
    CLI::Option* follow = audit.add_flag(
        "--follow", request->follows, "Go on with new events, as lines of JSON, until interrupted");
    add_row_options(audit, request->rows);
    for (const char* option : {"--format", "--columns"}) follow->excludes(audit.get_option(option));
    add_common_options(audit, request->common);
}

}  // namespace orvo::admin
