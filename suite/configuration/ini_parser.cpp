#include "suite/configuration/ini_parser.h"

#include <ini.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <mutex>
#include <string>

namespace orvo {

const Text* IniValues::find(TextView section, TextView key) const {
    const auto found = values_.find({lower(section), lower(key)});
    return found == values_.end() ? nullptr : &found->second;
}

bool IniValues::add(TextView section, TextView key, Text value) {
    return values_.try_emplace({lower(section), lower(key)}, std::move(value)).second;
}

namespace {

// inih cuts a longer name off without a word.
constexpr std::size_t longest_section_name = 49;
constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t";

struct Reading {
    std::string_view rest;
    std::size_t line = 0;
    IniValues values;
    std::map<std::pair<Text, Text>, std::size_t> first_lines;
    Text refusal;
    std::exception_ptr failure;

    bool stopped() const { return !refusal.empty() || failure; }
};

std::string_view stripped(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool is_control(unsigned char byte) { return (byte < 0x20 && byte != '\t') || byte == 0x7F; }

Text objection_to_section(std::string_view line) {
    const auto end = line.find(']');
    if (end == line.npos) return u"the name of the section is not closed by \"]\"";
    const auto name = line.substr(1, end - 1);
    if (stripped(name).empty()) return u"the section has no name";
    if (name.size() > longest_section_name)
        return u"the name of the section is longer than " + decimal(longest_section_name) +
               u" bytes";
    const auto behind = stripped(line.substr(end + 1));
    if (!behind.empty() && behind[0] != ';' && behind[0] != '#')
        return u"there is text behind \"]\"";
    return {};
}

// What inih would let pass.
Text objection_to(std::string_view line) {
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (to_utf8(from_utf8(line)) != line) return u"the line is not UTF-8";
    if (std::any_of(line.begin(), line.end(), is_control))
        return u"the line holds a control character";
    const auto content = stripped(line);
    return content.starts_with('[') ? objection_to_section(content) : Text{};
}

// inih's buffer is made for the longest line, so that every line is read at once.
char* next_line(char* buffer, int capacity, void* stream) {
    auto& reading = *static_cast<Reading*>(stream);
    if (reading.rest.empty() || reading.stopped()) return nullptr;
    try {
        const auto line = reading.rest.substr(0, reading.rest.find('\n')).size() + 1;
        const auto size = std::min(line, reading.rest.size());
        ++reading.line;
        reading.refusal = objection_to(reading.rest.substr(0, size));
        if (size >= static_cast<std::size_t>(capacity)) reading.refusal = u"the line is too long";
        if (reading.stopped()) return nullptr;
        std::memcpy(buffer, reading.rest.data(), size);
        buffer[size] = '\0';
        reading.rest.remove_prefix(size);
        return buffer;
    } catch (...) {
        reading.failure = std::current_exception();  // not through inih's frames
        return nullptr;
    }
}

Text add(Reading& reading, const char* section_bytes, const char* key_bytes, const char* value) {
    const Text section = from_utf8(stripped(section_bytes));
    const Text key = from_utf8(key_bytes);
    if (section.empty()) return u"the key stands outside any [section]";
    if (key.empty()) return u"the key has no name";
    const auto [first, is_new] =
        reading.first_lines.try_emplace({lower(section), lower(key)}, reading.line);
    if (!is_new)
        return u"\"" + key + u"\" is given twice in [" + section + u"], first on line " +
               decimal(static_cast<long long>(first->second));
    reading.values.add(section, key, from_utf8(value));
    return {};
}

int take(void* user, const char* section, const char* key, const char* value) {
    auto& reading = *static_cast<Reading*>(user);
    try {
        reading.refusal = add(reading, section, key, value);
    } catch (...) {
        reading.failure = std::current_exception();
    }
    return reading.stopped() ? 0 : 1;
}

int longest_line(std::string_view content) {
    std::size_t longest = 0;
    while (!content.empty()) {
        const auto end = std::min(content.find('\n'), content.size() - 1) + 1;
        longest = std::max(longest, end);
        content.remove_prefix(end);
    }
    return static_cast<int>(longest);
}

// inih's options belong to the process: they are set anew under the lock for every reading.
int run_inih(Reading& reading) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    ini_use_stack = false;
    ini_max_line = ini_initial_alloc = longest_line(reading.rest) + 3;
    ini_allow_realloc = false;
    ini_allow_multiline = false;
    ini_allow_inline_comments = false;
    ini_allow_no_value = false;
    ini_stop_on_first_error = true;
    return ini_parse_stream(next_line, &reading, take, &reading);
}

}  // namespace

IniValues parse_ini(std::string_view content, TextView name) {
    Reading reading;
    reading.rest = content;
    if (reading.rest.starts_with(byte_order_mark)) reading.rest.remove_prefix(3);
    const int result = run_inih(reading);
    if (reading.failure) std::rethrow_exception(reading.failure);
    if (result == -2) raise_runtime_error(runtime_error::out_of_memory);
    if (reading.refusal.empty() && result != 0)
        reading.refusal = u"the line is no \"[section]\", no \"key = value\" and no comment";
    if (!reading.refusal.empty())
        throw Failure(configuration_error::malformed_file, Text(configuration_source),
                      Text(name) + u":" + decimal(static_cast<long long>(reading.line)) + u": " +
                          reading.refusal);
    return std::move(reading.values);
}

}  // namespace orvo
