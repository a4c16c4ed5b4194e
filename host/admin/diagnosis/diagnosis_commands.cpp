#include "host/admin/diagnosis/diagnosis_commands.h"

#include <memory>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/program.h"
#include "host/admin/diagnosis/doctor.h"

namespace orvo::admin {

void add_diagnosis_commands(Program& program) {
    const auto request = std::make_shared<DoctorRequest>();
    CLI::App& doctor =
        program.command(program, "doctor", "Look at all that a site needs of its directory",
                        [request] { return examine_site(*request) ? done : not_done; });
    doctor.add_option("--site", request->site, "The site's settings (site.ini)")->type_name("FILE");
    doctor.add_flag("--json", request->is_json, "As JSON");
}

}  // namespace orvo::admin
