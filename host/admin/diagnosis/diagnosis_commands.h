#pragma once

namespace orvo::admin {

class Program;

// `orvo doctor`, and `orvo why`.
void add_diagnosis_commands(Program& program);

}  // namespace orvo::admin
