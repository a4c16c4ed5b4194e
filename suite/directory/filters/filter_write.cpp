#include <cstdint>
#include <string_view>

#include "suite/directory/filters/filter.h"

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

// The length of the UTF-8 sequence at the front (RFC 3629: shortest form, no surrogates); 0 for
// octets that are none.
std::size_t sequence_length(std::string_view octets) {
    const auto octet = [&](std::size_t i) { return static_cast<std::uint8_t>(octets[i]); };
    const std::uint8_t first = octet(0);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length > octets.size()) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((octet(i) & 0xC0) != 0x80) return 0;
    if (first == 0xE0 && octet(1) < 0xA0) return 0;
    if (first == 0xED && octet(1) > 0x9F) return 0;
    if (first == 0xF0 && octet(1) < 0x90) return 0;
    if (first == 0xF4 && octet(1) > 0x8F) return 0;
    return length;
}

bool is_escaped(char c) {
    return c == '(' || c == ')' || c == '*' || c == '\\' || (c >= 0 && c < ' ') || c == '\x7F';
}

void append_octet(std::string& text, char octet) {
    constexpr char digits[] = "0123456789abcdef";
    const auto value = static_cast<std::uint8_t>(octet);
    text += '\\';
    text += digits[value >> 4];
    text += digits[value & 0xF];
}

void append_value(std::string& text, std::string_view value) {
    for (std::size_t i = 0; i < value.size();) {
        const std::size_t length = sequence_length(value.substr(i));
        const bool at_an_end = i == 0 || i + 1 == value.size();
        if (length == 0 || is_escaped(value[i]) || (value[i] == ' ' && at_an_end)) {
            append_octet(text, value[i++]);
        } else {
            text += value.substr(i, length);
            i += length;
        }
    }
}

std::string_view operator_of(Kind kind) {
    switch (kind) {
        case Kind::at_least:
            return ">=";
        case Kind::at_most:
            return "<=";
        case Kind::similar:
            return "~=";
        case Kind::extensible:
            return ":=";
        default:
            return "=";
    }
}

void append_item(std::string& text, const Filter& filter) {
    text += filter.attribute;
    if (filter.of_name) text += ":dn";
    if (!filter.rule.empty()) text += ":" + filter.rule;
    text += operator_of(filter.kind);
    if (filter.kind == Kind::presence) text += '*';
    append_value(text, filter.value);
    for (std::size_t i = 0; i < filter.pieces.size(); ++i) {
        if (i > 0) text += '*';
        append_value(text, filter.pieces[i]);
    }
}

void append_filter(std::string& text, const Filter& filter) {
    text += '(';
    if (filter.kind == Kind::all_of) text += '&';
    if (filter.kind == Kind::any_of) text += '|';
    if (filter.kind == Kind::negation) text += '!';
    if (filter.kind > Kind::negation) append_item(text, filter);
    for (const Filter& part : filter.parts) append_filter(text, part);
    text += ')';
}

}  // namespace

std::string Filter::text() const {
    std::string result;
    append_filter(result, *this);
    return result;
}

}  // namespace orvo::directory
