#pragma once

// The text of one configuration file, read into sections of keys and values.
//
//     ; a comment ("#" begins one too), on a line of its own
//     [MEMBERSHIP]
//     LDAPServer = directory.example:389
//     UserClass  = top,person
//
// - A file is UTF-8, with or without a byte order mark; lines end in LF or CR LF.
// - A key ends at the first "=" or ":" of its line; everything behind it is the value, without the
//   blanks and tabs around it. A value may hold "=", ":", ";", "#", "," and quotes: they stand for
//   themselves, also in front. There is no comment behind a value, no quoting, no escape and no
//   continuation line, so a value cannot begin or end with a blank.
// - A key with nothing behind it has the empty value.
// - Names of sections and keys are compared without regard to case. A section may be opened several
//   times; a key may stand in it once.
//
// What does not fit is refused as a whole, with the line it is found on: see `parse_ini`.

#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace orvo {

namespace configuration_error {
// There is no such file (Automation's own number for that).
inline constexpr std::int32_t file_not_found = 53;
// Something is in the way of reading the file: its kind, its size, the system's answer.
inline constexpr std::int32_t file_not_readable = 75;
// The file was read and its text is refused.
inline constexpr std::int32_t malformed_file = error_number(0x80040201);
}  // namespace configuration_error

// Every failure of the configuration component carries this source.
inline constexpr TextView configuration_source = u"Quendra.Configuration";

// One key of a file, as it is spelled there; lines count from 1.
struct IniKey {
    Text section;
    Text name;
    Text value;
    long long line = 0;
    bool operator==(const IniKey&) const = default;
};

// Where a file opens a section.
struct IniSection {
    Text name;
    long long line = 0;
    bool operator==(const IniSection&) const = default;
};

class IniValues {
public:
    // Null when there is no such key.
    const Text* find(TextView section, TextView key) const;
    // In the file's order.
    const std::vector<IniKey>& keys() const { return keys_; }
    const std::vector<IniSection>& sections() const { return sections_; }

    void open(IniSection section) { sections_.push_back(std::move(section)); }
    // The line of a key of this name that is there already, which stays; 0 where the key is new.
    long long add(IniKey key);
    bool operator==(const IniValues&) const = default;

private:
    std::map<std::pair<Text, Text>, std::size_t> places_;  // in keys_, by names in lower case
    std::vector<IniKey> keys_;
    std::vector<IniSection> sections_;
};

// Reads the text of the file called `name` (for messages only). Raises
// `configuration_error::malformed_file`, "<name>:<line>: <reason>", where the reason never shows a
// value:
//
//     the line is not UTF-8
//     the line holds a control character
//     the line is no "[section]", no "key = value" and no comment
//     the name of the section is not closed by "]"
//     the section has no name
//     there is text behind "]"
//     the key has no name
//     the key stands outside any [section]
//     "<key>" is given twice in [<section>], first on line <line>
//
// Any thread.
IniValues parse_ini(std::string_view content, TextView name);

}  // namespace orvo
