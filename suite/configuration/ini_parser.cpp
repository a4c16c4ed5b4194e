#include "suite/configuration/ini_parser.h"

#include <algorithm>
#include <string>

namespace orvo {

const Text* IniValues::find(TextView section, TextView key) const {
    const auto found = places_.find({lower(section), lower(key)});
    return found == places_.end() ? nullptr : &keys_[found->second].value;
}

long long IniValues::add(IniKey key) {
    const auto [place, is_new] =
        places_.try_emplace({lower(key.section), lower(key.name)}, keys_.size());
    if (!is_new) return keys_[place->second].line;
    keys_.push_back(std::move(key));
    return 0;
}

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t";

std::string_view stripped(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool is_control(unsigned char byte) { return (byte < 0x20 && byte != '\t') || byte == 0x7F; }
bool is_comment(std::string_view text) { return text[0] == ';' || text[0] == '#'; }

// Takes the next line off, without its end.
std::string_view take_line(std::string_view& rest) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

// Takes in line after line. A refusal is an answer, empty where there is none.
class Reader {
public:
    Text take(std::string_view line) {
        ++line_;
        if (to_utf8(from_utf8(line)) != line) return u"the line is not UTF-8";
        if (std::any_of(line.begin(), line.end(), is_control))
            return u"the line holds a control character";
        const auto content = stripped(line);
        if (content.empty() || is_comment(content)) return {};
        return content[0] == '[' ? open_section(content) : add(content);
    }
    long long line() const { return line_; }
    IniValues values() && { return std::move(values_); }

private:
    Text open_section(std::string_view content) {
        const auto end = content.find(']');
        if (end == content.npos) return u"the name of the section is not closed by \"]\"";
        const auto name = stripped(content.substr(1, end - 1));
        if (name.empty()) return u"the section has no name";
        const auto behind = stripped(content.substr(end + 1));
        if (!behind.empty() && !is_comment(behind)) return u"there is text behind \"]\"";
        section_ = from_utf8(name);
        values_.open({section_, line_});
        return {};
    }

    Text add(std::string_view content) {
        const auto separator = content.find_first_of("=:");
        if (separator == content.npos)
            return u"the line is no \"[section]\", no \"key = value\" and no comment";
        const Text key = from_utf8(stripped(content.substr(0, separator)));
        if (section_.empty()) return u"the key stands outside any [section]";
        if (key.empty()) return u"the key has no name";
        const Text value = from_utf8(stripped(content.substr(separator + 1)));
        if (const long long first = values_.add({section_, key, value, line_}))
            return u"\"" + key + u"\" is given twice in [" + section_ + u"], first on line " +
                   decimal(first);
        return {};
    }

    long long line_ = 0;
    Text section_;
    IniValues values_;
};

}  // namespace

IniValues parse_ini(std::string_view content, TextView name) {
    if (content.starts_with(byte_order_mark)) content.remove_prefix(byte_order_mark.size());
    Reader reader;
    while (!content.empty()) {
        const Text refusal = reader.take(take_line(content));
        if (!refusal.empty())
            throw Failure(configuration_error::malformed_file, Text(configuration_source),
                          Text(name) + u":" + decimal(reader.line()) + u": " + refusal);
    }
    return std::move(reader).values();
}

}  // namespace orvo
