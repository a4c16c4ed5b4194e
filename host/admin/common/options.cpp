#include "host/admin/common/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace orvo::admin {
namespace {

constexpr const char* group = "Common options";

}  // namespace

void add_common_options(CLI::App& command, CommonOptions& options) {
    command.add_option("--site", options.site, "The site's settings (site.ini)")
        ->type_name("FILE")
        ->group(group);
    command.add_flag("--quiet", options.is_quiet, "Say nothing of what is done")->group(group);
}

void add_row_options(CLI::App& command, RowOptions& options) {
    command
        .add_option_function<std::string>(
            "--format", [&options](const std::string& name) { options.format = *try_format(name); },
            "How the rows are written: table, csv, json or ldif")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"table", "csv", "json", "ldif"}))
        ->default_str(std::string(name_of(options.format)));
    const auto trim = [](std::string& name) {
        name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
        name.erase(name.find_last_not_of(' ') + 1);
        return name.empty() ? "a column has no name" : std::string();
    };
    command
        .add_option("--columns", options.columns, "The columns, by their attributes: cn,mail,sn")
        ->type_name("NAMES")
        ->transform(CLI::Validator(trim, ""))
        ->delimiter(',')
        ->allow_extra_args(false);
}

}  // namespace orvo::admin
