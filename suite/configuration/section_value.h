#pragma once

// A section of the site's configuration, for those who have one of their own.

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/values/described_setting.h"
#include "suite/configuration/ini_parser.h"

namespace orvo {

// The value of one key, with what it refers to (value_reference.h) in its place. It lives no longer
// than the key and the file's name.
//
// What is wrong is raised as configuration_error::malformed_file,
//
//     "<file>:<line>: [<section>] <key>: <reason>"
class SectionValue {
public:
    SectionValue(const IniKey& key, const std::filesystem::path& site_file);

    const Text& text() const { return text_; }
    // A relative one counts from the configuration's folder. Raises for the empty text.
    std::filesystem::path file() const;
    // "yes" or "no".
    bool is_yes() const;
    // A whole number between two others, both of them allowed.
    std::int64_t number(std::int64_t least, std::int64_t most) const;

    [[noreturn]] void refuse(const Text& reason) const;
    // The key itself, which is none of these.
    [[noreturn]] void refuse_name(std::span<const TextView> names) const;

private:
    Text referred() const;

    const IniKey& key_;
    const std::filesystem::path& site_file_;
    const Text text_;
};

// A row of a section's table: a key, and where in the settings its value stands.
template <class Settings>
struct SectionKey {
    TextView name;
    // Of a number, and 0 otherwise.
    std::int64_t least = 0;
    std::int64_t most = 0;
    const char* values;                              // what it may be; of a number its unit
    std::string (*usual)(const Settings& settings);  // of those that say nothing
    const char* about;                               // sentences
    void (*read)(const SectionKey& key, const SectionValue& value, Settings& settings);

    std::int64_t number(const SectionValue& value) const { return value.number(least, most); }
};

// The rows as people are told of them.
template <class Settings, std::size_t count>
std::vector<DescribedSetting> described(const SectionKey<Settings> (&keys)[count]) {
    const Settings usual;
    std::vector<DescribedSetting> all;
    for (const SectionKey<Settings>& key : keys) {
        std::string values = key.values;
        if (key.most != 0)
            values += ", " + std::to_string(key.least) + " to " + std::to_string(key.most);
        all.push_back({to_utf8(key.name), values, key.usual(usual), key.about});
    }
    return all;
}

// Reads the keys of a section in the file's order: `read(row, value)` gets the row of the table
// that has the key's name (`name`, a TextView). Raises for a key that is in no row, and what `read`
// raises.
template <class Row, std::size_t count, class Read>
void read_section(const IniValues& values, TextView section, const std::filesystem::path& site_file,
                  const Row (&rows)[count], Read read) {
    for (const IniKey& given : values.keys()) {
        if (!equal_ignoring_case(given.section, section)) continue;
        const SectionValue value(given, site_file);
        const auto row = std::ranges::find_if(
            rows, [&](const Row& one) { return equal_ignoring_case(one.name, given.name); });
        if (row == std::end(rows)) {
            std::array<TextView, count> names;
            std::ranges::transform(rows, names.begin(), &Row::name);
            value.refuse_name(names);
        }
        read(*row, value);
    }
}

// The site's own file as it stands now.
struct SiteFile {
    std::filesystem::path name;
    std::shared_ptr<const IniValues> values;  // null: there is none, and none is named
};
// Raises what load_ini_file raises. Any thread, while no other one changes the environment.
SiteFile load_site_file();

}  // namespace orvo
