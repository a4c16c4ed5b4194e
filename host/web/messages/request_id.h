#pragma once

// What names one request in the logs, in its answer, and in what components note of it.

#include <string>
#include <string_view>

namespace orvo::web {

// Whether a name that came with a request may stand in logs: 1 to 64 letters, digits and "-_.:=+/".
bool is_request_id(std::string_view text);

// 16 letters, digits, "-" and "_": 96 random bits.
std::string new_request_id();

}  // namespace orvo::web
