#include "suite/log/log_entry.h"

#include <vector>

namespace orvo {

namespace {

constexpr TextView indentation = u"    ";

bool is_shown_by_code(char16_t unit) {
    return (unit < 0x20 && unit != u'\t') || (unit >= 0x7F && unit <= 0x9F) ||
           (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

Text on_one_line(TextView text) {
    Text result;
    for (const char16_t unit : text) {
        if (!is_shown_by_code(unit)) {
            result += unit;
            continue;
        }
        const Text code = hexadecimal(unit);
        result += u"\\u" + Text(4 - code.size(), u'0') + code;
    }
    return result;
}

std::vector<Text> lines_of(TextView message) {
    auto lines = split(replaced(message, u"\r\n", u"\n"), u"\n");
    while (!lines.empty() && lines.back().empty()) lines.pop_back();
    while (!lines.empty() && lines.front().empty()) lines.erase(lines.begin());
    return lines;
}

Text level_word(std::int32_t level) {
    if (level == log_level_error) return u"error";
    return level == log_level_note ? u"note" : u"note(" + decimal(level) + u")";
}

}  // namespace

std::string log_entry(LogChannel channel, std::int32_t level, TextView source, TextView message) {
    Text entry = level_word(level);
    if (channel == LogChannel::alternate) entry += u" [alternate]";
    entry += u" " + on_one_line(source) + u":";
    const auto lines = lines_of(message);
    if (lines.size() == 1) {
        entry += u" " + on_one_line(lines.front());
    } else {
        for (const auto& line : lines)
            entry += u"\n" + (line.empty() ? Text{} : Text(indentation) + on_one_line(line));
    }
    return to_utf8(entry);
}

}  // namespace orvo
