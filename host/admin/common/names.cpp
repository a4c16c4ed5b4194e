#include "host/admin/common/names.h"

#include "suite/directory/names/written_name.h"

namespace orvo::admin {

std::string as_name_value(std::string_view text) {
    return to_utf8(directory::escaped_value(from_utf8(text)));
}

std::string as_filter_value(std::string_view text) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string value;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (text.substr(at).starts_with("NOT") || c == '\0' || c == '(' || c == ')' || c == '*' ||
            c == '\\')
            value += {'\\', digits[c >> 4], digits[c & 15]};
        else
            value += c;
    }
    return value;
}

}  // namespace orvo::admin
