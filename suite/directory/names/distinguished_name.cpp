#include "suite/directory/names/distinguished_name.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "platform/values/text_forms.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/naming_types.h"

namespace orvo::directory {
namespace {

bool is_ascii(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// As they are where they are no text.
std::string compatible(const std::string& value) {
    const Text text = from_utf8(value);
    return to_utf8(text) == value ? to_utf8(compatible_lower(text)) : value;
}

bool is_escaped_in_keys(char c) { return c == '+' || c == '\\' || c == ',' || c == '#'; }

// Nothing but blanks is one blank, and something else than nothing.
void append_comparable(std::string& key, std::string_view value) {
    const std::size_t begin = key.size();
    for (std::size_t at = 0; at < value.size(); ++at) {
        const char c = ascii::lower(value[at]);
        if (c == ' ' && at > 0 && value[at - 1] == ' ') continue;
        if (c == ' ' && (at == 0 || at + 1 == value.size())) continue;
        if (is_escaped_in_keys(c)) key += '\\';
        key += c;
    }
    if (key.size() > begin && key.back() == ' ') key.pop_back();
    if (key.size() == begin && !value.empty()) key += ' ';
}

// Appends the comparable form of what it reads to a key.
class Parser {
public:
    Parser(TextView text, std::string& key) : text_(text), key_(key) {}

    // The number of relative names.
    std::optional<std::size_t> parse() {
        std::size_t depth = 0;
        skip_blanks();
        if (at_end()) return depth;
        do {
            if (depth++ > 0) key_ += ',';
            if (!relative_name()) return std::nullopt;
        } while (accept(u','));
        return at_end() ? std::optional(depth) : std::nullopt;
    }

private:
    bool relative_name() {
        const std::size_t begin = key_.size();
        if (!part()) return false;
        std::vector<std::string> parts;
        while (accept(u'+')) {
            parts.push_back(key_.substr(begin));
            key_.resize(begin);
            if (!part()) return false;
        }
        if (!parts.empty()) {
            parts.push_back(key_.substr(begin));
            key_.resize(begin);
            append_in_order(parts);
        }
        return true;
    }

    void append_in_order(std::vector<std::string>& parts) {
        std::ranges::sort(parts);
        for (const std::string& one : parts) {
            if (&one != &parts.front()) key_ += '+';
            key_ += one;
        }
    }

    bool part() {
        skip_blanks();
        if (!type()) return false;
        skip_blanks();
        if (!accept(u'=')) return false;
        key_ += '=';
        skip_blanks();
        if (!at_end() && peek() == u'#') return hexadecimal_value();
        value_.clear();
        if (!string_value()) return false;
        append_comparable(key_, is_ascii(value_) ? value_ : compatible(value_));
        return true;
    }

    bool type() {
        const std::size_t begin = key_.size();
        for (; !at_end() && is_of_type(peek()); ++position_)
            key_ += ascii::lower(static_cast<char>(peek()));
        const std::string_view type = std::string_view(key_).substr(begin);
        if (!is_type(type)) return false;
        if (const auto name = naming_type(type); name != type) key_.replace(begin, key_.npos, name);
        return true;
    }

    static bool is_of_type(char16_t c) {
        if (c >= 0x80) return false;
        const char byte = static_cast<char>(c);
        return ascii::is_alphanumeric(byte) || byte == '-' || byte == '.';
    }

    static bool is_type(std::string_view type) {
        if (type.empty()) return false;
        if (ascii::is_letter(type[0])) return type.find('.') == std::string_view::npos;
        return std::ranges::all_of(type, [](char c) { return ascii::is_digit(c) || c == '.'; }) &&
               ascii::is_digit(type[0]) && type.back() != '.';
    }

    bool hexadecimal_value() {
        const std::size_t begin = key_.size();
        do key_ += ascii::lower(static_cast<char>(text_[position_++]));
        while (!at_end() && is_hexadecimal(peek()));
        skip_blanks();
        const std::size_t digits = key_.size() - begin - 1;
        return digits > 0 && digits % 2 == 0 && ends_here();
    }

    bool string_value() {
        std::size_t kept = 0;  // what is escaped is never trimmed
        while (!ends_here()) {
            const char16_t c = peek();
            if (c >= 0x80) {
                append_beyond_ascii();
                kept = value_.size();
                continue;
            }
            ++position_;
            if (c == u'\\') {
                if (!escaped()) return false;
                kept = value_.size();
            } else if (c == u'"' || c == u';' || c == u'<' || c == u'>' || c == u'\0') {
                return false;
            } else {
                value_ += static_cast<char>(c);
                if (c != u' ') kept = value_.size();
            }
        }
        value_.resize(kept);
        return true;
    }

    void append_beyond_ascii() {
        const std::size_t begin = position_;
        while (!at_end() && peek() >= 0x80) ++position_;
        value_ += to_utf8(text_.substr(begin, position_ - begin));
    }

    bool escaped() {
        if (at_end()) return false;
        const char16_t c = text_[position_++];
        if (TextView(u" \"#+,;<=>\\").find(c) != TextView::npos) {
            value_ += static_cast<char>(c);
            return true;
        }
        if (at_end() || !is_hexadecimal(c) || !is_hexadecimal(peek())) return false;
        const char high = static_cast<char>(c), low = static_cast<char>(peek());
        value_ += static_cast<char>(ascii::digit_value(high) * 16 + ascii::digit_value(low));
        ++position_;
        return true;
    }

    static bool is_hexadecimal(char16_t c) {
        return c < 0x80 && ascii::is_hexadecimal(static_cast<char>(c));
    }
    bool at_end() const { return position_ == text_.size(); }
    char16_t peek() const { return text_[position_]; }
    bool ends_here() const { return at_end() || peek() == u',' || peek() == u'+'; }
    bool accept(char16_t c) {
        if (at_end() || peek() != c) return false;
        ++position_;
        return true;
    }
    void skip_blanks() {
        while (!at_end() && peek() == u' ') ++position_;
    }

    TextView text_;
    std::size_t position_ = 0;
    std::string& key_;
    std::string value_;  // as it is read
};

// Without zeros in front: of numbers they say nothing.
std::string loosened(const std::string& value) {
    std::string loose;
    if (is_ascii(value))
        std::ranges::copy_if(value, std::back_inserter(loose), ascii::is_alphanumeric);
    else
        loose = to_utf8(letters_and_digits(from_utf8(value)));
    return loose.substr(std::min(loose.find_first_not_of('0'), loose.size()));
}

}  // namespace

std::optional<DistinguishedName> DistinguishedName::try_parse(TextView text) {
    DistinguishedName name;
    name.key_.reserve(text.size());
    const auto depth = Parser(text, name.key_).parse();
    if (!depth) return std::nullopt;
    name.depth_ = *depth;
    return name;
}

bool DistinguishedName::is_below(const DistinguishedName& ancestor) const {
    if (depth_ <= ancestor.depth_) return false;
    if (ancestor.depth_ == 0) return true;
    const std::string_view own = key_, above = ancestor.key_;
    if (own.size() <= above.size() || !own.ends_with(above)) return false;
    const std::string_view front = own.substr(0, own.size() - above.size());
    if (front.back() != ',') return false;
    const std::string_view relative = front.substr(0, front.size() - 1);
    const std::size_t escapes = relative.size() - (relative.find_last_not_of('\\') + 1);
    return escapes % 2 == 0;
}

DistinguishedName DistinguishedName::parent() const {
    DistinguishedName above;
    if (depth_ <= 1) return above;
    std::size_t end = 0;
    while (key_[end] != ',') end += key_[end] == '\\' ? 2 : 1;
    above.key_ = key_.substr(end + 1);
    above.depth_ = depth_ - 1;
    return above;
}

std::string DistinguishedName::loose_key() const {
    std::string loose;
    std::size_t relative_name = 0;  // where it begins
    bool has_parts = false;
    for (std::size_t at = 0; at < key_.size(); ++at) {
        at = key_.find('=', at) + 1;
        if (at < key_.size() && key_[at] == '#') return {};
        std::string value;
        for (; at < key_.size() && key_[at] != ',' && key_[at] != '+'; ++at)
            if (key_[at] != '\\')
                value += key_[at];
            else
                ++at;
        loose += loosened(value);
        has_parts |= at < key_.size() && key_[at] == '+';
        if (at < key_.size() && key_[at] == '+') continue;
        // Parts are in the order of their types, which are not told apart here.
        if (has_parts)
            std::ranges::sort(loose.begin() + std::ptrdiff_t(relative_name), loose.end());
        has_parts = false;
        if (at < key_.size()) loose += ',';
        relative_name = loose.size();
    }
    return loose;
}

}  // namespace orvo::directory
