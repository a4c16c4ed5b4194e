#pragma once

#include <string>
#include <string_view>

namespace orvo::web {

inline constexpr std::size_t token_length = 43;

// 256 bits from the system's source of randomness, as so many letters, digits, "-" and "_".
std::string random_token();

// Letters and digits from the same source, without those that people take for another (0, O, 1, l,
// I): 5.8 bits each.
std::string random_text(std::size_t length);

// Compares in a time that does not tell how much is equal.
bool equal_secretly(std::string_view a, std::string_view b);

}  // namespace orvo::web
