#pragma once

namespace orvo::admin {

class Program;

// `orvo directory ...`: the file of an embedded directory.
void add_directory_commands(Program& program);

}  // namespace orvo::admin
