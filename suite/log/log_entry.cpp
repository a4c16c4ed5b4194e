#include "suite/log/log_entry.h"

#include <algorithm>
#include <vector>

namespace orvo {

namespace {

constexpr TextView indentation = u"    ";

void append_on_one_line(Text& entry, TextView text) {
    for (;;) {
        const auto shown = std::find_if(text.begin(), text.end(), is_shown_by_code);
        entry.append(text.begin(), shown);
        if (shown == text.end()) return;
        const Text code = hexadecimal(*shown);
        entry += u"\\u";
        entry.append(4 - code.size(), u'0') += code;
        text = text.substr(static_cast<std::size_t>(shown - text.begin()) + 1);
    }
}

// Without the empty ones at the ends.
std::vector<TextView> lines_of(TextView message) {
    std::vector<TextView> lines;
    std::size_t kept = 0;
    for (std::size_t begin = 0; begin <= message.size();) {
        const std::size_t end = std::min(message.find(u'\n', begin), message.size());
        TextView line = message.substr(begin, end - begin);
        if (end < message.size() && line.ends_with(u'\r')) line.remove_suffix(1);
        begin = end + 1;
        if (line.empty() && lines.empty()) continue;
        lines.push_back(line);
        if (!line.empty()) kept = lines.size();
    }
    lines.resize(kept);
    return lines;
}

Text level_word(std::int32_t level) {
    if (level == log_level_error) return u"error";
    return level == log_level_note ? u"note" : u"note(" + decimal(level) + u")";
}

}  // namespace

bool is_shown_by_code(char16_t unit) {
    return (unit < 0x20 && unit != u'\t') || (unit >= 0x7F && unit <= 0x9F) ||
           (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

std::string log_entry(LogChannel channel, std::int32_t level, TextView source, TextView message) {
    Text entry = level_word(level);
    if (channel == LogChannel::alternate) entry += u" [alternate]";
    entry += u' ';
    append_on_one_line(entry, source);
    entry += u':';
    const auto lines = lines_of(message);
    for (const TextView line : lines) {
        const bool is_only = lines.size() == 1;
        entry += is_only ? u' ' : u'\n';
        if (!is_only && !line.empty()) entry += indentation;
        append_on_one_line(entry, line);
    }
    return to_utf8(entry);
}

}  // namespace orvo
