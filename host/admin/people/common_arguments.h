#pragma once

// Arguments of several commands.

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "host/admin/people/user_admin.h"

namespace orvo::admin {

// What bash completes: the names of users, roles or profiles stand where these do.
inline constexpr const char *user_argument = "USER", *role_argument = "ROLE",
                            *profile_argument = "PROFILE";

void add_grant_options(CLI::App& command, GrantRequest& request, const char* what,
                       const char* type_name);
void add_user_list_options(CLI::App& command, UserListRequest& request);

}  // namespace orvo::admin
