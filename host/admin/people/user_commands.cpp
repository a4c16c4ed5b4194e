#include <memory>

#include "host/admin/common/program.h"
#include "host/admin/people/common_arguments.h"
#include "host/admin/people/people_commands.h"
#include "host/admin/process/process_commands.h"
#include "host/admin/process/running_host.h"

namespace orvo::admin {
namespace {

class UserCommands {
public:
    explicit UserCommands(Program& program)
        : program_(program), users_(program.group(program, "users", "The site's users")) {}

    void add_looks() {
        const auto list = std::make_shared<UserListRequest>();
        CLI::App& lists = program_.command(users_, "list", "List users, by their names",
                                           [list] { return list_users(*list); });
        lists.add_option("--profile", list->filter.profile, "Who have this profile")
            ->type_name(profile_argument);
        add_user_list_options(lists, *list);

        const auto shown = std::make_shared<NamesRequest>();
        CLI::App& show = program_.command(users_, "show", "Show what users have",
                                          [shown] { return show_users(*shown); });
        add_names(show, *shown);
        add_row_options(show, shown->rows);
    }

    void add_edits() {
        const auto made = std::make_shared<UserAddRequest>();
        CLI::App& add =
            program_.command(users_, "add", "Make a user", [made] { return add_user(*made); });
        add_name(add, made->password.name)->type_name("");
        add.add_option("ATTRIBUTES", made->assignments,
                       "What the user has, each as attribute=value: mail=tim@shop.example");
        add.add_option("--type", made->type, "The user's type: 0 to 4, or a name")
            ->type_name("TYPE")
            ->capture_default_str();
        add.add_option("--profile", made->profile, "The user's profile")
            ->type_name(profile_argument);
        add.add_option("--role", made->roles, "The user's roles, with commas between")
            ->type_name(role_argument)
            ->delimiter(',')
            ->allow_extra_args(false);
        add.add_option("--application", made->applications,
                       "The user's applications, with commas between")
            ->type_name("N")
            ->delimiter(',')
            ->allow_extra_args(false);
        add_password_options(add, made->password);

        const auto changed = std::make_shared<AssignmentsRequest>();
        CLI::App& set = program_.command(users_, "set", "Change attributes of a user, all or none",
                                         [changed] { return set_user(*changed); });
        add_name(set, changed->name);
        set.add_option("ATTRIBUTES", changed->assignments,
                       "What the user is to have, each as attribute=value: all values where one is "
                       "repeated, and none where it has no value")
            ->required();
        add_common_options(set, changed->common);
        add_all("remove", "Remove users", remove_users);
    }

    void add_accounts() {
        const auto password = std::make_shared<PasswordRequest>();
        CLI::App& command = program_.command(
            users_, "password",
            "Set a user's password, which is asked for, or is a line of standard input",
            [password] { return set_password(*password); });
        add_name(command, password->name);
        add_password_options(command, *password);
        add_unlock();
        add_change("disable", "Disable accounts, until they are enabled", AccountChange::disable);
        add_change("enable", "Enable accounts that were disabled", AccountChange::enable);
        add_change("expire", "Have users change their passwords at the next login",
                   AccountChange::expire);

        const auto logout = std::make_shared<LogoutRequest>();
        logout->socket = usual_host_socket;
        CLI::App& out = program_.command(users_, "logout", "End all logins of users",
                                         [logout] { return log_out_users(*logout); });
        add_names(out, logout->users);
        add_socket(out, logout->socket);
    }

    void add_grants() {
        const auto roles = std::make_shared<GrantRequest>();
        CLI::App& role = program_.command(users_, "roles", "Show or change a user's own roles",
                                          [roles] { return grant_user_roles(*roles); });
        add_name(role, roles->name);
        add_grant_options(role, *roles, "roles", role_argument);

        const auto apps = std::make_shared<GrantRequest>();
        CLI::App& application =
            program_.command(users_, "apps", "Show or change a user's own applications",
                             [apps] { return grant_user_applications(*apps); });
        add_name(application, apps->name);
        add_grant_options(application, *apps, "applications", "N");

        const auto given = std::make_shared<ProfileRequest>();
        CLI::App& profile = program_.command(users_, "profile", "Show or change a user's profile",
                                             [given] { return give_profile(*given); });
        add_name(profile, given->name);
        CLI::Option* set = profile.add_option("--set", given->profile, "Give this profile")
                               ->type_name(profile_argument);
        profile.add_flag("--clear", given->is_cleared, "Take the profile")->excludes(set);
        add_common_options(profile, given->common);
    }

private:
    static CLI::Option* add_name(CLI::App& command, std::string& name) {
        return command.add_option("USER", name, "The user's name")
            ->required()
            ->type_name(user_argument);
    }
    static void add_names(CLI::App& command, NamesRequest& request) {
        command.add_option("USER", request.names, "The users' names")
            ->required()
            ->type_name(user_argument);
        add_common_options(command, request.common);
    }
    static void add_password_options(CLI::App& command, PasswordRequest& request) {
        command.add_flag("--generate", request.is_generated, "Take a random password, and show it");
        command.add_flag("--must-change", request.is_temporary,
                         "It has to be changed at the next login");
        add_common_options(command, request.common);
    }
    void add_all(const char* name, const char* description, int (*work)(const NamesRequest&)) {
        const auto request = std::make_shared<NamesRequest>();
        add_names(
            program_.command(users_, name, description, [request, work] { return work(*request); }),
            *request);
    }
    void add_change(const char* name, const char* description, AccountChange change) {
        const auto request = std::make_shared<NamesRequest>();
        add_names(program_.command(users_, name, description,
                                   [request, change] { return change_accounts(change, *request); }),
                  *request);
    }
    void add_unlock() {
        const auto request = std::make_shared<UnlockRequest>();
        CLI::App& command = program_.command(
            users_, "unlock", "Unlock accounts that wrong passwords have locked, and forget these",
            [request] { return unlock(*request); });
        CLI::Option* names = command.add_option("USER", request->users.names, "The users' names")
                                 ->type_name(user_argument);
        CLI::Option* addresses =
            command
                .add_option("--address", request->addresses,
                            "Forget the wrong passwords that have come from this address")
                ->type_name("ADDRESS")
                ->allow_extra_args(false);
        command.parse_complete_callback([names, addresses] {
            if (names->count() + addresses->count() == 0) throw CLI::RequiredError("USER");
        });
        add_common_options(command, request->users.common);
        add_socket(command, request->socket);
    }

    Program& program_;
    CLI::App& users_;
};

}  // namespace

void add_user_commands(Program& program) {
    UserCommands commands(program);
    commands.add_looks();
    commands.add_edits();
    commands.add_accounts();
    commands.add_grants();
}

}  // namespace orvo::admin
