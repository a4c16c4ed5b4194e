#pragma once

namespace orvo::admin {

class Program;

// `orvo init`.
void add_setup_commands(Program& program);

}  // namespace orvo::admin
