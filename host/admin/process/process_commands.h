#pragma once

#include <filesystem>

namespace CLI {
class App;
}

namespace orvo::admin {

class Program;

// --socket, for a command that asks a running host.
void add_socket(CLI::App& command, std::filesystem::path& socket);

// orvo pool, orvo cache clear
void add_process_commands(Program& program);

}  // namespace orvo::admin
