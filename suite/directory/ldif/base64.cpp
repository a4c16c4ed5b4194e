#include "suite/directory/ldif/base64.h"

#include <cstdint>

namespace orvo::directory {
namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string base64(std::string_view octets) {
    std::string text;
    text.reserve((octets.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < octets.size(); at += 3) {
        std::uint32_t group = 0;
        for (std::size_t place = at; place < at + 3; ++place)
            group = group << 8 |
                    (place < octets.size() ? static_cast<unsigned char>(octets[place]) : 0u);
        for (int shift = 18; shift >= 0; shift -= 6) text += digits[group >> shift & 63];
    }
    const std::size_t missing = (3 - octets.size() % 3) % 3;
    text.replace(text.size() - missing, missing, missing, '=');
    return text;
}

std::optional<std::string> try_from_base64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    const std::size_t missing = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    std::string octets;
    octets.reserve(text.size() / 4 * 3);
    for (std::size_t at = 0; at < text.size(); at += 4) {
        std::uint32_t group = 0;
        for (std::size_t place = at; place < at + 4; ++place) {
            const bool is_filling = place + missing >= text.size();
            const std::size_t digit = is_filling ? 0 : digits.find(text[place]);
            if (digit == std::string_view::npos) return std::nullopt;
            group = group << 6 | static_cast<std::uint32_t>(digit);
        }
        for (int shift = 16; shift >= 0; shift -= 8)
            octets += static_cast<char>(group >> shift & 255);
    }
    if (octets.substr(octets.size() - missing) != std::string(missing, '\0')) return std::nullopt;
    octets.resize(octets.size() - missing);
    return octets;
}

}  // namespace orvo::directory
