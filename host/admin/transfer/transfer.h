#pragma once

// `orvo import` and `orvo export`: each function is one command and answers its exit code.

#include <filesystem>

#include "host/admin/common/options.h"

namespace orvo::admin {

struct ImportUsersRequest {
    CommonOptions common;
    std::filesystem::path file;     // "-": standard input
    bool creates = true;            // who is not there
    bool updates = false;           // who is there with other values
    bool is_dry_run = false;        // only says what would be done
    std::filesystem::path refused;  // a new file for what is refused; empty: standard error alone
};
// Each user is imported as a whole or not at all; the others go on where one is refused. Ends early
// where the directory cannot be worked with. To run it again does no harm.
int import_users(const ImportUsersRequest& request);

struct ExportUsersRequest {
    CommonOptions common;
    RowOptions rows;
    std::filesystem::path file;  // a new one; "-": standard output
};
// All users with all that the component knows of them but passwords, so that an import has nothing
// to do.
int export_users(const ExportUsersRequest& request);

}  // namespace orvo::admin
