#include "host/admin/common/program.h"

#include <utility>

namespace orvo::admin {

CLI::App& Program::group(CLI::App& parent, const std::string& name,
                         const std::string& description) {
    CLI::App& group = *parent.add_subcommand(name, description);
    group.require_subcommand(1);
    return group;
}

CLI::App& Program::command(CLI::App& parent, const std::string& name,
                           const std::string& description, Action action) {
    CLI::App& command = *parent.add_subcommand(name, description);
    actions_.emplace(&command, std::move(action));
    return command;
}

int Program::run() const {
    const CLI::App* at = this;
    while (!at->get_subcommands().empty()) at = at->get_subcommands().front();
    return actions_.at(at)();
}

}  // namespace orvo::admin
