#include "suite/directory/common/distinguished_name.h"

#include <algorithm>
#include <string_view>

#include "suite/directory/common/ascii.h"

namespace orvo::directory {
namespace {

// The attribute types that RFC 4514 names, each with its other spellings.
struct TypeNames {
    std::string_view name;
    std::string_view long_name;
    std::string_view oid;
};
constexpr TypeNames well_known_types[] = {
    {"cn", "commonname", "2.5.4.3"},
    {"l", "localityname", "2.5.4.7"},
    {"st", "stateorprovincename", "2.5.4.8"},
    {"o", "organizationname", "2.5.4.10"},
    {"ou", "organizationalunitname", "2.5.4.11"},
    {"c", "countryname", "2.5.4.6"},
    {"street", "streetaddress", "2.5.4.9"},
    {"dc", "domaincomponent", "0.9.2342.19200300.100.1.25"},
    {"uid", "userid", "0.9.2342.19200300.100.1.1"},
};

std::string one_spelling(std::string_view type) {
    std::string name = ascii::lower(type);
    for (const TypeNames& row : well_known_types)
        if (name == row.long_name || name == row.oid) return std::string(row.name);
    return name;
}

std::string comparable(const std::string& value) {
    std::string folded = to_utf8(lower(from_utf8(value)));
    std::string result;
    for (char c : folded) {
        if (c == ' ' && (result.empty() || result.back() == ' ')) continue;
        result += c;
    }
    if (!result.empty() && result.back() == ' ') result.pop_back();
    return result;
}

// What separates the parts of a key, or marks a value given in hexadecimal, is escaped in values.
void append_value(std::string& component, std::string_view value) {
    for (char c : value) {
        if (c == '+' || c == '\\' || c == ',' || c == '#') component += '\\';
        component += c;
    }
}

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    bool parse(std::vector<std::string>& components) {
        skip_blanks();
        if (at_end()) return true;
        do {
            if (!relative_name(components.emplace_back())) return false;
        } while (accept(','));
        return at_end();
    }

private:
    bool relative_name(std::string& component) {
        std::vector<std::string> parts;
        do {
            if (!part(parts.emplace_back())) return false;
        } while (accept('+'));
        std::sort(parts.begin(), parts.end());
        for (const std::string& one : parts) {
            if (!component.empty()) component += '+';
            component += one;
        }
        return true;
    }

    bool part(std::string& result) {
        skip_blanks();
        const std::size_t begin = position_;
        while (!at_end() && (ascii::is_alphanumeric(peek()) || peek() == '-' || peek() == '.'))
            ++position_;
        const std::string_view type = text_.substr(begin, position_ - begin);
        if (!is_type(type)) return false;
        skip_blanks();
        if (!accept('=')) return false;
        skip_blanks();
        result = one_spelling(type) + '=';
        std::string value;
        if (!at_end() && peek() == '#') {
            if (!hexadecimal_value(value)) return false;
            result += '#' + value;
            return true;
        }
        if (!string_value(value)) return false;
        append_value(result, comparable(value));
        return true;
    }

    static bool is_type(std::string_view type) {
        if (type.empty()) return false;
        if (ascii::is_letter(type[0])) return type.find('.') == std::string_view::npos;
        return std::all_of(type.begin(), type.end(),
                           [](char c) { return ascii::is_digit(c) || c == '.'; }) &&
               ascii::is_digit(type[0]) && type.back() != '.';
    }

    bool hexadecimal_value(std::string& value) {
        ++position_;
        while (!at_end() && ascii::is_hexadecimal(peek()))
            value += ascii::lower(text_[position_++]);
        skip_blanks();
        return !value.empty() && value.size() % 2 == 0 && ends_here();
    }

    bool string_value(std::string& value) {
        std::size_t kept = 0;  // what is escaped is never trimmed
        while (!ends_here()) {
            const char c = text_[position_++];
            if (c == '\\') {
                if (!escaped(value)) return false;
                kept = value.size();
            } else if (c == '"' || c == ';' || c == '<' || c == '>' || c == '\0') {
                return false;
            } else {
                value += c;
                if (c != ' ') kept = value.size();
            }
        }
        value.resize(kept);
        return true;
    }

    bool escaped(std::string& value) {
        if (at_end()) return false;
        const char c = text_[position_++];
        if (std::string_view(" \"#+,;<=>\\").find(c) != std::string_view::npos) {
            value += c;
            return true;
        }
        if (at_end() || !ascii::is_hexadecimal(c) || !ascii::is_hexadecimal(peek())) return false;
        value += static_cast<char>(ascii::digit_value(c) * 16 + ascii::digit_value(peek()));
        ++position_;
        return true;
    }

    bool at_end() const { return position_ == text_.size(); }
    char peek() const { return text_[position_]; }
    bool ends_here() const { return at_end() || peek() == ',' || peek() == '+'; }
    bool accept(char c) {
        if (at_end() || peek() != c) return false;
        ++position_;
        return true;
    }
    void skip_blanks() {
        while (!at_end() && peek() == ' ') ++position_;
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

}  // namespace

std::optional<DistinguishedName> DistinguishedName::try_parse(TextView text) {
    const std::string bytes = to_utf8(text);
    DistinguishedName name;
    if (!Parser(bytes).parse(name.components_)) return std::nullopt;
    return name;
}

bool DistinguishedName::is_below(const DistinguishedName& ancestor) const {
    return components_.size() > ancestor.components_.size() &&
           std::equal(ancestor.components_.rbegin(), ancestor.components_.rend(),
                      components_.rbegin());
}

std::string DistinguishedName::key() const {
    std::string result;
    for (const std::string& component : components_) {
        if (!result.empty()) result += ',';
        result += component;
    }
    return result;
}

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
    const std::size_t sign = relative_name.find(u'=');
    if (sign == TextView::npos || DistinguishedName::try_parse(relative_name))
        return Text(relative_name);
    return Text(relative_name.substr(0, sign + 1)) + escaped_value(relative_name.substr(sign + 1));
}

Text full_name(TextView written) {
    if (DistinguishedName::try_parse(written)) return Text(written);
    for (std::size_t comma = written.find(u','); comma != TextView::npos;
         comma = written.find(u',', comma + 1)) {
        const TextView rest = written.substr(comma + 1);
        if (DistinguishedName::try_parse(rest)) return entry_name(written.substr(0, comma), rest);
    }
    return Text(written);
}

// Nowhere does a spelling of the container have more commas than its key.
std::optional<Text> name_below(TextView written, const DistinguishedName& container) {
    const std::string key = container.key();
    auto commas = std::count(key.begin(), key.end(), ',') + 1;
    for (std::size_t comma = written.rfind(u','); comma != TextView::npos && commas > 0;
         comma = comma == 0 ? TextView::npos : written.rfind(u',', comma - 1), --commas) {
        const TextView relative = written.substr(0, comma);
        const Text rest = container_name(written.substr(comma + 1));
        if (DistinguishedName::try_parse(rest) != container) continue;
        if (trimmed(relative).empty()) return std::nullopt;
        return entry_name(relative, rest);
    }
    const auto whole = DistinguishedName::try_parse(written);
    if (!whole || !whole->is_below(container)) return std::nullopt;
    return Text(written);
}

Text entry_name(TextView relative_name, TextView container) {
    Text result = escaped_name(relative_name);
    if (!relative_name.empty() && !container.empty()) result += u',';
    return result += container;
}

}  // namespace orvo::directory
