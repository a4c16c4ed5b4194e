#pragma once

#include <span>
#include <string>

namespace orvo::store {

inline std::string lower_hexadecimal(std::span<const unsigned char> bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

}  // namespace orvo::store
