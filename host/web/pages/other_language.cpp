#include "host/web/pages/other_language.h"

#include <algorithm>
#include <array>
#include <string>

namespace orvo::web {
namespace {

constexpr auto npos = std::string_view::npos;

std::string lower_trimmed(std::string_view line) {
    const auto first = line.find_first_not_of(" \t\r");
    if (first == npos) return {};
    std::string text(line.substr(first, line.find_last_not_of(" \t\r") - first + 1));
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return text;
}

bool is_perl(std::string_view line) {
    return line.starts_with("my $") || line.starts_with("use strict") ||
           (line.starts_with('$') && line.find("->") != npos) ||
           (line.starts_with("sub ") && line.ends_with('{'));
}

bool is_visual_basic(std::string_view line) {
    static constexpr std::array beginnings{
        std::string_view("'"),
        std::string_view("dim "),
        std::string_view("sub "),
        std::string_view("rem "),
        std::string_view("end if"),
        std::string_view("end sub"),
        std::string_view("elseif "),
        std::string_view("for each "),
        std::string_view("on error "),
        std::string_view("call "),
        std::string_view("loop "),
        std::string_view("do while "),
        std::string_view("next "),
        std::string_view("redim "),
        std::string_view("const "),
        std::string_view("end function"),
        std::string_view("select case "),
        std::string_view("option explicit"),
    };
    if (std::ranges::any_of(beginnings, [&](auto word) { return line.starts_with(word); }))
        return true;
    if (line == "next" || line == "loop" || line == "wend") return true;
    if (line.starts_with("set ")) return line.find('=') != npos;
    return line.starts_with("if ") && line.find(" then") != npos;
}

}  // namespace

std::string_view other_language_of(std::string_view program) {
    while (!program.empty()) {
        const auto end = program.find('\n');
        const std::string line = lower_trimmed(program.substr(0, end));
        program.remove_prefix(end == npos ? program.size() : end + 1);
        if (is_perl(line)) return "PerlScript";
        if (is_visual_basic(line)) return "VBScript";
    }
    return {};
}

}  // namespace orvo::web
