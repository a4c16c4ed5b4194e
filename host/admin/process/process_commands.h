#pragma once

namespace orvo::admin {

class Program;

// orvo pool, orvo cache clear
void add_process_commands(Program& program);

}  // namespace orvo::admin
