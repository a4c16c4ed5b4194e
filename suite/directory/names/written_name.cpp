#include "suite/directory/names/written_name.h"

#include <algorithm>

#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

// Most names: a type and a value that hold nothing that would have to be read.
bool is_plain(TextView relative_name) {
    const std::size_t sign = relative_name.find(u'=');
    if (sign == TextView::npos || sign == 0 || sign + 1 == relative_name.size()) return false;
    const TextView type = relative_name.substr(0, sign), value = relative_name.substr(sign + 1);
    const auto is_letter = [](char16_t c) {
        return c < 0x80 && ascii::is_letter(static_cast<char>(c));
    };
    const auto is_special = [](char16_t c) {
        switch (c) {
            case u'\0':
            case u'"':
            case u'+':
            case u',':
            case u';':
            case u'<':
            case u'>':
            case u'\\':
                return true;
            default:
                return false;
        }
    };
    return std::ranges::all_of(type, is_letter) && value.front() != u'#' && value.front() != u' ' &&
           value.back() != u' ' && std::ranges::none_of(value, is_special);
}

}  // namespace

Text container_name(TextView container) {
    if (container.find(u'/') == TextView::npos) return Text(container);
    std::vector<Text> pieces = split(container, u"/");
    Text result;
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece) {
        if (piece != pieces.rbegin()) result += u',';
        result += *piece;
    }
    return result;
}

Text escaped_value(TextView value) {
    Text result;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const char16_t c = value[at];
        const bool is_first = at == 0;
        const bool is_last = at + 1 == value.size();
        if (c == u'\0') {
            result += u"\\00";
            continue;
        }
        if (TextView(u"\"+,;<>\\").find(c) != TextView::npos || (c == u'#' && is_first) ||
            (c == u' ' && (is_first || is_last)))
            result += u'\\';
        result += c;
    }
    return result;
}

Text escaped_name(TextView relative_name) {
    if (is_plain(relative_name)) return Text(relative_name);
    const std::size_t sign = relative_name.find(u'=');
    if (sign == TextView::npos || DistinguishedName::try_parse(relative_name))
        return Text(relative_name);
    return Text(relative_name.substr(0, sign + 1)) + escaped_value(relative_name.substr(sign + 1));
}

Text full_name(TextView written) {
    if (written.size() > longest_name || DistinguishedName::try_parse(written))
        return Text(written);
    for (std::size_t comma = written.find(u','); comma != TextView::npos;
         comma = written.find(u',', comma + 1)) {
        const TextView rest = written.substr(comma + 1);
        if (DistinguishedName::try_parse(rest)) return entry_name(written.substr(0, comma), rest);
    }
    return Text(written);
}

namespace {

std::optional<Text> readable_name(TextView relative, TextView container) {
    if (trimmed(relative).empty()) return std::nullopt;
    Text name = entry_name(relative, container);
    if (!DistinguishedName::try_parse(name)) return std::nullopt;
    return name;
}

}  // namespace

// Nowhere does a spelling of the container have more commas than its key.
std::optional<Text> name_below(TextView written, const DistinguishedName& container) {
    if (written.size() > longest_name) return std::nullopt;
    const std::string& key = container.key();
    auto commas = std::count(key.begin(), key.end(), ',') + 1;
    for (std::size_t comma = written.rfind(u','); comma != TextView::npos && commas > 0;
         comma = comma == 0 ? TextView::npos : written.rfind(u',', comma - 1), --commas) {
        const TextView relative = written.substr(0, comma);
        const Text rest = container_name(written.substr(comma + 1));
        if (DistinguishedName::try_parse(rest) != container) continue;
        return readable_name(relative, container.depth() > 0 ? rest : Text());
    }
    const auto whole = DistinguishedName::try_parse(written);
    if (!whole || !whole->is_below(container)) return std::nullopt;
    return Text(written);
}

bool is_plain_below(TextView written, TextView container) {
    const bool is_root = container.find_first_not_of(u' ') == TextView::npos;
    if (is_root || written.size() > longest_name || written.size() <= container.size())
        return false;
    const std::size_t comma = written.size() - container.size() - 1;
    return written.ends_with(container) && written[comma] == u',' &&
           is_plain(written.substr(0, comma));
}

Text entry_name(TextView relative_name, TextView container) {
    Text result = escaped_name(relative_name);
    if (!relative_name.empty() && !container.empty()) result += u',';
    return result += container;
}

}  // namespace orvo::directory
