#pragma once

#include <string>
#include <string_view>

namespace orvo::web {

// 256 bits from the system's source of randomness, as 43 letters, digits, "-" and "_".
std::string random_token();

// Compares in a time that does not tell how much is equal.
bool equal_secretly(std::string_view a, std::string_view b);

}  // namespace orvo::web
