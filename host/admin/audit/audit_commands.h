#pragma once

namespace orvo::admin {

class Program;

// orvo audit
void add_audit_commands(Program& program);

}  // namespace orvo::admin
