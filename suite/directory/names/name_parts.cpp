#include "suite/directory/names/name_parts.h"

#include <algorithm>

#include "platform/values/text.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory {
namespace {

void skip_blanks(std::string_view name, std::size_t& at) {
    while (at < name.size() && name[at] == ' ') ++at;
}

std::string attribute_in_name(std::string_view name, std::size_t& at) {
    skip_blanks(name, at);
    const std::size_t sign = name.find('=', at);
    const std::size_t end = name.find_last_not_of(' ', sign - 1) + 1;
    std::string attribute(name.substr(at, end - at));
    at = sign + 1;
    skip_blanks(name, at);
    return attribute;
}

}  // namespace

std::string value_in_name(std::string_view name, std::size_t& at) {
    const std::size_t plain = std::min(name.find_first_of("\\,+", at), name.size());
    std::string value(name.substr(at, plain - at));
    std::size_t kept = value.find_last_not_of(' ') + 1;
    for (at = plain; at < name.size() && name[at] != ',' && name[at] != '+';) {
        const bool is_escape = name[at] == '\\' && at + 1 < name.size();
        if (!is_escape) {
            value += name[at++];
        } else if (at + 2 < name.size() && ascii::is_hexadecimal(name[at + 1]) &&
                   ascii::is_hexadecimal(name[at + 2])) {
            value += static_cast<char>(ascii::digit_value(name[at + 1]) * 16 +
                                       ascii::digit_value(name[at + 2]));
            at += 3;
        } else {
            value += name[at + 1];
            at += 2;
        }
        if (is_escape || value.back() != ' ') kept = value.size();
    }
    value.resize(kept);
    return value;
}

std::optional<std::vector<RelativeName>> try_name_parts(std::string_view name) {
    const Text text = from_utf8(name);
    if (to_utf8(text) != name || !DistinguishedName::try_parse(text)) return std::nullopt;
    std::vector<RelativeName> parts;
    std::size_t at = 0;
    skip_blanks(name, at);
    for (bool is_new = true; at < name.size(); ++at) {
        if (is_new) parts.emplace_back();
        std::string attribute = attribute_in_name(name, at);
        if (at < name.size() && name[at] == '#') return std::nullopt;
        parts.back().push_back({std::move(attribute), value_in_name(name, at)});
        is_new = at < name.size() && name[at] == ',';
    }
    return parts;
}

namespace {

// In hexadecimal, as servers write names.
std::string escaped(std::string_view value) {
    const bool is_text = to_utf8(from_utf8(value)) == value;
    std::string result;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const char c = value[at];
        const bool is_at_end = at == 0 || at + 1 == value.size();
        const bool is_special =
            std::string_view("\"+,;<=>\\\r\n\0", 11).find(c) != std::string_view::npos;
        const bool is_beyond_ascii = static_cast<unsigned char>(c) >= 0x80;
        if (is_special || (c == '#' && at == 0) || (c == ' ' && is_at_end) ||
            (is_beyond_ascii && !is_text)) {
            constexpr std::string_view digits = "0123456789ABCDEF";
            const auto octet = static_cast<unsigned char>(c);
            result += {'\\', digits[octet >> 4], digits[octet & 15]};
        } else {
            result += c;
        }
    }
    return result;
}

}  // namespace

std::string joined_name(const std::vector<RelativeName>& parts) {
    std::string name;
    for (const RelativeName& relative : parts) {
        if (!name.empty()) name += ',';
        for (const NamePart& part : relative) {
            if (&part != &relative.front()) name += '+';
            name += part.attribute + '=' + escaped(part.value);
        }
    }
    return name;
}

}  // namespace orvo::directory
