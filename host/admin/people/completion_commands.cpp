#include <memory>

#include "host/admin/common/program.h"
#include "host/admin/people/common_arguments.h"
#include "host/admin/people/completion.h"
#include "host/admin/people/people_commands.h"

namespace orvo::admin {

void add_completion_commands(Program& program) {
    const auto request = std::make_shared<CompletionRequest>();
    CLI::App& completion =
        program.command(program, "completion", "Print names for the shell to complete",
                        [request] { return print_names(*request); });
    completion.add_option("KIND", request->kind, "What they are names of: USER, ROLE or PROFILE")
        ->required()
        ->check(CLI::IsMember({user_argument, role_argument, profile_argument}));
    completion.add_option("BEGIN", request->begin, "What they begin with");
    add_common_options(completion, request->common);
}

}  // namespace orvo::admin
