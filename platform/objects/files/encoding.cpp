#include "platform/objects/files/encoding.h"

#include <algorithm>
#include <iterator>

namespace orvo {
namespace {

struct Name {
    const char16_t* name;
    Encoding encoding;
};

constexpr Name names[] = {
    {u"utf-8", Encoding::utf8},
    {u"utf8", Encoding::utf8},
    {u"unicode", Encoding::utf16},
    {u"utf-16", Encoding::utf16},
    {u"utf-16le", Encoding::utf16},
    {u"utf-16be", Encoding::utf16_big},
    {u"unicodefffe", Encoding::utf16_big},
    {u"iso-8859-1", Encoding::latin1},
    {u"latin1", Encoding::latin1},
    {u"windows-1252", Encoding::windows1252},
    {u"us-ascii", Encoding::ascii},
    {u"ascii", Encoding::ascii},
};

constexpr char16_t not_a_character = 0xFFFD;

// What windows-1252 has at 0x80 to 0x9F.
constexpr char16_t special_1252[] = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

bool has_two_byte_units(Encoding encoding) {
    return encoding == Encoding::utf16 || encoding == Encoding::utf16_big;
}

char16_t unit_at(Encoding encoding, std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes[0]);
    const auto second = static_cast<unsigned char>(bytes[1]);
    return static_cast<char16_t>(encoding == Encoding::utf16 ? first | second << 8
                                                             : first << 8 | second);
}

bool is_first_half(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_second_half(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

char16_t character_of(Encoding encoding, unsigned char byte) {
    if (encoding == Encoding::ascii && byte >= 0x80) return not_a_character;
    if (encoding == Encoding::windows1252 && byte >= 0x80 && byte < 0xA0)
        return special_1252[byte - 0x80];
    return byte;
}

char byte_of(Encoding encoding, char16_t unit) {
    const char16_t end = encoding == Encoding::ascii ? 0x80 : 0x100;
    const bool is_special =
        encoding == Encoding::windows1252 && unit >= 0x80 && (unit < 0xA0 || unit >= 0x100);
    if (is_special) {
        const auto found = std::ranges::find(special_1252, unit);
        if (found == std::end(special_1252)) return '?';
        return static_cast<char>(0x80 + (found - special_1252));
    }
    return unit < end ? static_cast<char>(unit) : '?';
}

// How long the character is that a byte of UTF-8 begins.
std::size_t promised(unsigned char byte) {
    if (byte >= 0xC2 && byte < 0xE0) return 2;
    if (byte >= 0xE0 && byte < 0xF0) return 3;
    if (byte >= 0xF0 && byte < 0xF5) return 4;
    return 1;
}

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::optional<Encoding> encoding_named(TextView name) {
    const auto found = std::ranges::find_if(
        names, [&](const Name& known) { return equal_ignoring_case(known.name, name); });
    if (found == std::end(names)) return std::nullopt;
    return found->encoding;
}

std::string encoded(Encoding encoding, TextView text) {
    if (encoding == Encoding::utf8) return to_utf8(text);
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
        if (has_two_byte_units(encoding)) {
            bytes += encoding == Encoding::utf16 ? low : high;
            bytes += encoding == Encoding::utf16 ? high : low;
            continue;
        }
        bytes += byte_of(encoding, unit);
        if (is_first_half(unit) && i + 1 < text.size() && is_second_half(text[i + 1])) ++i;
    }
    return bytes;
}

Text decoded(Encoding encoding, std::string_view bytes) {
    if (encoding == Encoding::utf8) return from_utf8(bytes);
    Text text;
    if (has_two_byte_units(encoding)) {
        for (; bytes.size() >= 2; bytes.remove_prefix(2)) text += unit_at(encoding, bytes);
        if (!bytes.empty()) text += not_a_character;
        return text;
    }
    for (const char byte : bytes) text += character_of(encoding, static_cast<unsigned char>(byte));
    return text;
}

std::string_view mark_of(Encoding encoding) {
    switch (encoding) {
        case Encoding::utf8:
            return "\xEF\xBB\xBF";
        case Encoding::utf16:
            return "\xFF\xFE";
        case Encoding::utf16_big:
            return "\xFE\xFF";
        default:
            return {};
    }
}

std::size_t first_character(Encoding encoding, std::string_view bytes) {
    if (has_two_byte_units(encoding)) {
        const bool is_pair = bytes.size() >= 4 && is_first_half(unit_at(encoding, bytes)) &&
                             is_second_half(unit_at(encoding, bytes.substr(2)));
        return std::min<std::size_t>(bytes.size(), is_pair ? 4 : 2);
    }
    if (encoding != Encoding::utf8) return 1;
    const std::size_t length =
        std::min(bytes.size(), promised(static_cast<unsigned char>(bytes.front())));
    // What is no character is a byte for itself.
    return from_utf8(bytes.substr(0, length)).size() <= (length == 4 ? 2u : 1u) ? length : 1;
}

std::size_t whole_characters(Encoding encoding, std::string_view bytes) {
    if (has_two_byte_units(encoding)) {
        const std::size_t units = bytes.size() / 2 * 2;
        if (units >= 2 && is_first_half(unit_at(encoding, bytes.substr(units - 2))))
            return units - 2;
        return units;
    }
    if (encoding != Encoding::utf8) return bytes.size();
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, bytes.size()); ++back) {
        const char byte = bytes[bytes.size() - back];
        if (continues(byte)) continue;
        return promised(static_cast<unsigned char>(byte)) > back ? bytes.size() - back
                                                                 : bytes.size();
    }
    return bytes.size();
}

}  // namespace orvo
