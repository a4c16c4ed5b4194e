#include "host/admin/setup/setup_commands.h"

#include <memory>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/program.h"
#include "host/admin/setup/init_site.h"

namespace orvo::admin {

void add_setup_commands(Program& program) {
    const auto request = std::make_shared<InitRequest>();
    CLI::App& init = program.command(
        program, "init", "Make a site's settings, embedded directory and first administrator",
        [request] {
            init_site(*request);
            return done;
        });
    init.add_option("--site", request->site, "The site's settings (site.ini)")->type_name("FILE");
    init.add_option("--data", request->data,
                    "The folder of the directory, where there are no settings yet")
        ->capture_default_str()
        ->type_name("FOLDER");
    init.add_option("--administrator", request->administrator, "The first user")
        ->capture_default_str()
        ->type_name("NAME");
    init.add_option("--owner", request->owner, "Whose files they are to be (root alone)")
        ->type_name("USER");
}

}  // namespace orvo::admin
