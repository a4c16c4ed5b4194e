#pragma once

// `orvo users`: each function is one command and answers its exit code. What it has done goes to
// standard output, what went wrong is raised; nothing is half done then.

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "host/admin/common/options.h"
#include "host/admin/people/user_filter.h"

namespace orvo::admin {

struct UserListRequest {
    CommonOptions common;
    RowOptions rows;
    UserFilter filter;
    std::size_t limit = 0;  // rows; 0: all
};
int list_users(const UserListRequest& request);

struct NamesRequest {
    CommonOptions common;
    RowOptions rows = {};
    std::vector<std::string> names;
};
int show_users(const NamesRequest& request);
int remove_users(const NamesRequest& request);

struct PasswordRequest {
    CommonOptions common;
    std::string name;
    bool is_generated = false;
    bool is_temporary = false;  // to be changed at the next login
};
int set_password(const PasswordRequest& request);

struct UserAddRequest {
    PasswordRequest password;
    std::vector<std::string> assignments;  // "mail=a@shop.example"
    std::string profile = {};
    std::string type = "RegisteredUser";
    std::vector<std::string> roles = {}, applications = {};
};
int add_user(const UserAddRequest& request);

struct AssignmentsRequest {
    CommonOptions common;
    std::string name;
    std::vector<std::string> assignments;
};
int set_user(const AssignmentsRequest& request);

// What a user or profile has of something; with none of these it is shown.
struct GrantRequest {
    CommonOptions common;
    std::string name;
    std::vector<std::string> add, remove, set;
    bool is_cleared = false;

    bool is_asked() const { return add.empty() && remove.empty() && set.empty() && !is_cleared; }
};
int grant_user_roles(const GrantRequest& request);
int grant_user_applications(const GrantRequest& request);

struct ProfileRequest {
    CommonOptions common;
    std::string name;
    std::string profile = {};
    bool is_cleared = false;
};
int give_profile(const ProfileRequest& request);

// What an account is to be. Of a user it applies to: exit code and sentences as above.
enum class AccountChange { unlock, disable, enable, expire };
int change_accounts(AccountChange change, const NamesRequest& request);

struct UnlockRequest {
    NamesRequest users;
    std::vector<std::string> addresses;                // of browsers
    std::filesystem::path socket = usual_host_socket;  // where wrong passwords are counted
};
// Unlocks accounts, and has the site's throttle forget the wrong passwords of these users, and
// those that have come from these addresses.
int unlock(const UnlockRequest& request);

struct LogoutRequest {
    NamesRequest users;
    std::filesystem::path socket;  // of the running host that keeps the logins
};
// Ends all logins of these users, also of those who are in no directory any more.
int log_out_users(const LogoutRequest& request);

}  // namespace orvo::admin
