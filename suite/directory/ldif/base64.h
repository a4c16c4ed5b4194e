#pragma once

// RFC 4648, 4.

#include <optional>
#include <string>
#include <string_view>

namespace orvo::directory {

// Filled up with "=" to whole groups of four, in one line.
std::string base64(std::string_view octets);

// Nothing for anything that base64 does not give.
std::optional<std::string> try_from_base64(std::string_view text);

}  // namespace orvo::directory
