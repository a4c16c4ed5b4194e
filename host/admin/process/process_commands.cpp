#include "host/admin/process/process_commands.h"

#include <memory>

#include "host/admin/common/program.h"
#include "host/admin/process/running_host.h"

namespace orvo::admin {

void add_socket(CLI::App& command, std::filesystem::path& socket) {
    command.add_option("--socket", socket, "The host's AdminSocket")
        ->type_name("FILE")
        ->capture_default_str();
}

void add_process_commands(Program& program) {
    const auto pool = std::make_shared<HostRequest>();
    CLI::App& show = program.command(program, "pool", "Show a running host's connections",
                                     [pool] { return show_pool(*pool); });
    show.add_flag("--servers", pool->about_servers, "Its directory servers, and how they do");
    add_socket(show, pool->socket);
    add_row_options(show, pool->rows);

    const auto cache = std::make_shared<HostRequest>();
    CLI::App& group = program.group(program, "cache", "What a running host keeps of entries");
    CLI::App& clear = program.command(group, "clear", "Forget it, so that all is read anew",
                                      [cache] { return clear_cache(*cache); });
    add_socket(clear, cache->socket);
    clear.add_flag("--quiet", cache->common.is_quiet, "Say nothing of what is done");
}

}  // namespace orvo::admin
