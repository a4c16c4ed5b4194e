#pragma once

namespace orvo::admin {

class Program;

// `orvo users ...` and `orvo profiles ...`.
void add_user_commands(Program& program);
void add_profile_commands(Program& program);

// `orvo completion ...`: what bash completes.
void add_completion_commands(Program& program);

}  // namespace orvo::admin
