#include "host/admin/people/common_arguments.h"

namespace orvo::admin {
namespace {

CLI::Option* add_list(CLI::App& command, const std::string& name, std::vector<std::string>& list,
                      const std::string& description, const char* type_name) {
    return command.add_option(name, list, description)
        ->type_name(type_name)
        ->delimiter(',')
        ->allow_extra_args(false);
}

}  // namespace

void add_grant_options(CLI::App& command, GrantRequest& request, const char* what,
                       const char* type_name) {
    const std::string names = std::string(what) + ", with commas between";
    add_list(command, "--add", request.add, "Give these " + names, type_name);
    add_list(command, "--remove", request.remove, "Take these " + names, type_name);
    CLI::Option* set = add_list(command, "--set", request.set,
                                "Give these " + names + ", and no others", type_name);
    CLI::Option* clear =
        command.add_flag("--clear", request.is_cleared, std::string("Take all ") + what);
    set->excludes(clear)->excludes("--add")->excludes("--remove");
    clear->excludes("--add")->excludes("--remove");
    add_common_options(command, request.common);
}

void add_user_list_options(CLI::App& command, UserListRequest& request) {
    UserFilter& filter = request.filter;
    command.add_option("--role", filter.role, "Who have this role, or whose profile has it")
        ->type_name(role_argument);
    command
        .add_option("--application", filter.application,
                    "Who have this application, or whose profile has it")
        ->type_name("N");
    command.add_option("--type", filter.type, "Who are of this type: 0 to 4, or RegisteredUser")
        ->type_name("TYPE");
    command
        .add_option("--name", filter.name,
                    "Whose common, first or last name or mail address this is; * stands for any "
                    "letters")
        ->type_name("NAME");
    command
        .add_option("--filter", filter.items, "Who meet this condition, too: \"SpendLimit>=1000\"")
        ->type_name("FILTER")
        ->allow_extra_args(false);
    command.add_option("--after", filter.after, "Who come behind this name")
        ->type_name(user_argument);
    command.add_option("--limit", request.limit, "No more than so many users")
        ->check(CLI::Validator(
            [](const std::string& number) {
                return number.starts_with('-') ? number + " is less than none" : std::string();
            },
            ""))
        ->type_name("N");
    add_row_options(command, request.rows);
    add_common_options(command, request.common);
}

}  // namespace orvo::admin
