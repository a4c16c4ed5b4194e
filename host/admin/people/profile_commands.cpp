#include <memory>

#include "host/admin/common/program.h"
#include "host/admin/people/common_arguments.h"
#include "host/admin/people/people_commands.h"
#include "host/admin/people/profile_admin.h"

namespace orvo::admin {
namespace {

class ProfileCommands {
public:
    explicit ProfileCommands(Program& program)
        : program_(program), profiles_(program.group(program, "profiles", "The site's profiles")) {}

    void add_looks() {
        const auto listed = std::make_shared<ProfileListRequest>();
        CLI::App& list = program_.command(profiles_, "list", "List profiles, by their names",
                                          [listed] { return list_profiles(*listed); });
        add_row_options(list, listed->rows);
        add_common_options(list, listed->common);

        const auto shown = std::make_shared<NamesRequest>();
        CLI::App& show = program_.command(profiles_, "show", "Show what profiles have",
                                          [shown] { return show_profiles(*shown); });
        add_names(show, *shown);
        add_row_options(show, shown->rows);

        const auto users = std::make_shared<UserListRequest>();
        CLI::App& having = program_.command(profiles_, "users", "List the users of a profile",
                                            [users] { return list_users(*users); });
        add_name(having, users->filter.profile)->type_name(profile_argument);
        add_user_list_options(having, *users);
    }

    void add_edits() {
        add_assignments("add", "Make a profile", add_profile, false)->type_name("");
        add_assignments("set", "Change attributes of a profile, all or none", set_profile, true)
            ->type_name(profile_argument);
        const auto removed = std::make_shared<NamesRequest>();
        add_names(program_.command(profiles_, "remove", "Remove profiles that nobody has",
                                   [removed] { return remove_profiles(*removed); }),
                  *removed);
    }

    void add_grants() {
        add_grant("roles", "Show or change a profile's roles", "roles", role_argument,
                  grant_profile_roles);
        add_grant("apps", "Show or change a profile's applications", "applications", "N",
                  grant_profile_applications);
    }

private:
    static CLI::Option* add_name(CLI::App& command, std::string& name) {
        return command.add_option("PROFILE", name, "The profile's name")->required();
    }
    static void add_names(CLI::App& command, NamesRequest& request) {
        command.add_option("PROFILE", request.names, "The profiles' names")
            ->required()
            ->type_name(profile_argument);
        add_common_options(command, request.common);
    }
    CLI::Option* add_assignments(const char* name, const char* description,
                                 int (*work)(const AssignmentsRequest&), bool is_required) {
        const auto request = std::make_shared<AssignmentsRequest>();
        CLI::App& command = program_.command(profiles_, name, description,
                                             [request, work] { return work(*request); });
        CLI::Option* profile = add_name(command, request->name);
        command
            .add_option(
                "ATTRIBUTES", request->assignments,
                "What the profile is to have, each as attribute=value: all values where one is "
                "repeated, and none where it has no value")
            ->required(is_required);
        add_common_options(command, request->common);
        return profile;
    }
    void add_grant(const char* name, const char* description, const char* what,
                   const char* type_name, int (*work)(const GrantRequest&)) {
        const auto request = std::make_shared<GrantRequest>();
        CLI::App& command = program_.command(profiles_, name, description,
                                             [request, work] { return work(*request); });
        add_name(command, request->name)->type_name(profile_argument);
        add_grant_options(command, *request, what, type_name);
    }

    Program& program_;
    CLI::App& profiles_;
};

}  // namespace

void add_profile_commands(Program& program) {
    ProfileCommands commands(program);
    commands.add_looks();
    commands.add_edits();
    commands.add_grants();
}

}  // namespace orvo::admin
