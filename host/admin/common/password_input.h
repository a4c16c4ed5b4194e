#pragma once

// Passwords come from a person or through a pipe, never from the command line, where others see
// them.

#include <string>

namespace orvo::admin {

// An existing password: asked for on the terminal, without showing it, or, where standard input is
// no terminal, its next line. Raises std::runtime_error where there is none.
std::string read_password(const std::string& prompt);

// A new one. On a terminal it is asked for twice; raises std::runtime_error where the two differ.
std::string read_new_password(const std::string& whose);

}  // namespace orvo::admin
