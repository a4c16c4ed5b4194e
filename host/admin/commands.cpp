#include "host/admin/commands.h"

#include "host/admin/audit/audit_commands.h"
#include "host/admin/diagnosis/diagnosis_commands.h"
#include "host/admin/directory/directory_commands.h"
#include "host/admin/people/people_commands.h"
#include "host/admin/process/process_commands.h"
#include "host/admin/setup/setup_commands.h"
#include "host/admin/transfer/transfer_commands.h"

namespace orvo::admin {

Commands::Commands()
    : Program("orvo", "Looks after a site's users and profiles, and their directory.") {
    require_subcommand(1);
    add_setup_commands(*this);
    add_user_commands(*this);
    add_profile_commands(*this);
    add_transfer_commands(*this);
    add_directory_commands(*this);
    add_diagnosis_commands(*this);
    add_audit_commands(*this);
    add_process_commands(*this);
    add_completion_commands(*this);
    footer(
        "Each command has a --help of its own.\n"
        "\n"
        "Exit status:\n"
        "  0  it is done\n"
        "  1  it is not, and standard error says why\n"
        "  2  orvo was called in a wrong way\n"
        "  3  some of it is done, and standard error says what is not");
}

}  // namespace orvo::admin
