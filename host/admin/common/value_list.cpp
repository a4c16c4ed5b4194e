#include "host/admin/common/value_list.h"

namespace orvo::admin {
namespace {

bool is_special(char c) { return c == ';' || c == '\\'; }

}  // namespace

std::string joined_values(const std::vector<std::string>& values) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string& value = values[i];
        if (i > 0) text += ';';
        for (std::size_t at = 0; at < value.size(); ++at) {
            const bool is_last = at + 1 == value.size();
            if (value[at] == ';' || (value[at] == '\\' && (is_last || is_special(value[at + 1]))))
                text += '\\';
            text += value[at];
        }
    }
    return text;
}

std::vector<std::string> split_values(std::string_view text) {
    if (text.empty()) return {};
    std::vector<std::string> values(1);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == ';') {
            values.emplace_back();
            continue;
        }
        if (text[at] == '\\' && at + 1 < text.size() && is_special(text[at + 1])) ++at;
        values.back() += text[at];
    }
    return values;
}

}  // namespace orvo::admin
