#include "host/admin/diagnosis/diagnosis_commands.h"

#include <memory>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/options.h"
#include "host/admin/common/program.h"
#include "host/admin/diagnosis/doctor.h"
#include "host/admin/diagnosis/why.h"
#include "host/admin/process/process_commands.h"

namespace orvo::admin {

namespace {

void add_doctor(Program& program) {
    const auto request = std::make_shared<DoctorRequest>();
    CLI::App& doctor =
        program.command(program, "doctor", "Look at all that a site needs of its directory",
                        [request] { return examine_site(*request) ? done : not_done; });
    doctor.add_option("--site", request->site, "The site's settings (site.ini)")->type_name("FILE");
    doctor.add_flag("--json", request->is_json, "As JSON");
}

void add_why(Program& program) {
    const auto request = std::make_shared<WhyRequest>();
    CLI::App& why =
        program.command(program, "why", "Say which step of a user's login refuses it",
                        [request] { return explain_login(*request) ? done : not_done; });
    why.add_option("USER", request->user, "As it is typed into the login page")->required();
    why.add_option("--site", request->site, "The site's settings (site.ini)")->type_name("FILE");
    CLI::Option* compared = why.add_flag(
        "--password", request->has_password,
        "Ask for the password too, and compare it where that does not count as a login");
    why.add_flag("--try", request->is_tried,
                 "Ask for the password and log in: a wrong one counts as a failed login")
        ->excludes(compared);
    why.add_option("--from", request->address,
                   "The browser's address: whether the throttle would refuse a login from there")
        ->type_name("ADDRESS");
    add_socket(why, request->socket);
    why.add_flag("--json", request->is_json, "As JSON");
}

}  // namespace

void add_diagnosis_commands(Program& program) {
    add_doctor(program);
    add_why(program);
}

}  // namespace orvo::admin
