#pragma once

// Characters of attribute names, numbers and syntaxes: ASCII in every locale.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvo::directory::ascii {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
constexpr bool is_letter(char c) { return lower(c) >= 'a' && lower(c) <= 'z'; }
constexpr bool is_alphanumeric(char c) { return is_letter(c) || is_digit(c); }
constexpr bool is_hexadecimal(char c) {
    return is_digit(c) || (lower(c) >= 'a' && lower(c) <= 'f');
}

// The value of a decimal or hexadecimal digit.
constexpr int digit_value(char c) { return is_digit(c) ? c - '0' : lower(c) - 'a' + 10; }

inline std::string lower(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = lower(c);
    return result;
}

inline bool equal_ignoring_case(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

// For containers of names, which are then also looked up by a std::string_view.
struct HashIgnoringCase {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        std::uint64_t hash = 14695981039346656037U;  // FNV-1a
        for (const char c : text)
            hash = (hash ^ static_cast<unsigned char>(lower(c))) * 1099511628211U;
        return static_cast<std::size_t>(hash);
    }
};
struct EqualIgnoringCase {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const {
        return equal_ignoring_case(a, b);
    }
};

}  // namespace orvo::directory::ascii
