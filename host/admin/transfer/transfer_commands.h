#pragma once

namespace orvo::admin {

class Program;

// `orvo import` and `orvo export`.
void add_transfer_commands(Program& program);

}  // namespace orvo::admin
