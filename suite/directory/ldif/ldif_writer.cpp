#include "suite/directory/ldif/ldif_writer.h"

#include <algorithm>
#include <string_view>

#include "suite/directory/ldif/base64.h"

namespace orvo::directory {
namespace {

constexpr std::size_t longest_line = 76;

bool is_plain(std::string_view value) {
    if (value.empty()) return true;
    const char first = value.front();
    return first != ' ' && first != ':' && first != '<' && value.back() != ' ' &&
           std::ranges::all_of(value, [](char c) { return c >= ' ' && c < '\x7F'; });
}

void append_folded(std::string& text, std::string_view line) {
    std::size_t room = longest_line;
    while (line.size() > room) {
        text.append(line, 0, room).append("\n ");
        line.remove_prefix(room);
        room = longest_line - 1;
    }
    text.append(line).append("\n");
}

void append_value(std::string& text, const std::string& name, const std::string& value) {
    if (value.empty())
        append_folded(text, name + ":");
    else if (is_plain(value))
        append_folded(text, name + ": " + value);
    else
        append_folded(text, name + ":: " + base64(value));
}

}  // namespace

void append_ldif(std::string& text, const EntryData& entry) {
    append_value(text, "dn", entry.name);
    for (const Attribute& attribute : entry.attributes)
        for (const std::string& value : attribute.values) append_value(text, attribute.name, value);
    text += '\n';
}

}  // namespace orvo::directory
