#pragma once

// Options that many commands have.

#include <filesystem>
#include <string>
#include <vector>

#include "host/admin/common/row_writer.h"

namespace CLI {
class App;
}

namespace orvo::admin {

struct CommonOptions {
    std::filesystem::path site;  // empty: the system's (site_file)
    bool is_quiet = false;       // says nothing of what is done, and shows no progress
};
// --site and --quiet.
void add_common_options(CLI::App& command, CommonOptions& options);

// Of a running host, where no option says another (add_socket).
inline constexpr const char* usual_host_socket = "/run/orvo/orvo-web.sock";

struct RowOptions {
    Format format = Format::table;
    std::vector<std::string> columns;  // empty: the command's usual ones
};
// --format and --columns.
void add_row_options(CLI::App& command, RowOptions& options);

}  // namespace orvo::admin
