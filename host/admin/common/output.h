#pragma once

#include <ostream>
#include <string_view>

namespace orvo::admin {

// Raises std::runtime_error where the stream takes no more, as when its reader has gone away.
void put(std::ostream& out, std::string_view text);

// What was written to standard output is out then; raises like put().
void flush_output();

}  // namespace orvo::admin
