// LDIF files. The input is one.

#include <algorithm>
#include <sstream>
#include <vector>

#include "suite/directory/ldif/base64.h"
#include "suite/directory/ldif/ldif_reader.h"
#include "suite/directory/ldif/ldif_writer.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::directory;

// As far as the file can be read.
struct Read {
    std::vector<LdifRecord> records;
    std::string error;
};

Read read(std::string_view text, std::size_t longest = LdifReader::usual_longest) {
    std::istringstream in{std::string(text)};
    LdifReader reader(in, longest);
    Read result;
    try {
        while (std::optional<LdifRecord> record = reader.next())
            result.records.push_back(*std::move(record));
    } catch (const LdifError& error) {
        result.error = error.what();
    }
    return result;
}

bool are_equal(const EntryData& one, const EntryData& other) {
    return one.name == other.name && std::ranges::equal(one.attributes, other.attributes,
                                                        [](const Attribute& a, const Attribute& b) {
                                                            return a.name == b.name &&
                                                                   a.values == b.values;
                                                        });
}

bool are_equal(const Replacement& one, const Replacement& other) {
    return one.attribute == other.attribute && one.values == other.values && one.kind == other.kind;
}

void append_change(std::string& text, const Replacement& change) {
    const char* const words[] = {"add", "delete", "replace"};
    text.append(words[static_cast<int>(change.kind)]).append(": ").append(change.attribute);
    for (const std::string& value : change.values)
        text.append("\n").append(change.attribute).append(":: ").append(base64(value));
    text.append("\n-\n");
}

void check_changes(const LdifRecord& record) {
    if (record.kind != LdifRecord::Kind::modify) return;
    std::string text = "dn: cn=a\nchangetype: modify\n";
    for (const Replacement& change : record.changes) append_change(text, change);
    const Read again = read(text);
    require(again.records.size() == 1 &&
                std::ranges::equal(
                    again.records.front().changes, record.changes,
                    [](const Replacement& a, const Replacement& b) { return are_equal(a, b); }),
            "changes that are written are read back");
}

void check_records(const std::vector<LdifRecord>& records, std::size_t lines) {
    std::int64_t line = 0;
    for (const LdifRecord& record : records) {
        require(record.line > line && record.line <= std::int64_t(lines),
                "a record begins behind the one before it");
        line = record.line;
        require(record.kind == LdifRecord::Kind::modify || record.changes.empty(),
                "only a modification has changes");
        check_changes(record);
        for (const Attribute& attribute : record.entry.attributes)
            require(!attribute.values.empty(), "an attribute that is there has a value");
    }
}

void check_lines(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        require(end <= 76, "a line that is written has 76 characters at most");
        text.remove_prefix(end + 1);
    }
}

void check_writing(const std::vector<LdifRecord>& records) {
    std::string text;
    for (const LdifRecord& record : records) append_ldif(text, record.entry);
    check_lines(text);
    const Read again = read(text);
    require(again.error.empty(), "what is written can be read");
    require(std::ranges::equal(again.records, records,
                               [](const LdifRecord& a, const LdifRecord& b) {
                                   return are_equal(a.entry, b.entry);
                               }),
            "entries that are written are read back");
}

}  // namespace

void ldif_properties(std::string_view input) {
    const Read whole = read(input);
    const std::size_t lines = line_count(input);
    if (!whole.error.empty()) require_place(whole.error, "line ", lines);
    check_records(whole.records, lines);
    check_writing(whole.records);

    const Read narrow = read(input, 20);
    if (!narrow.error.empty()) require_place(narrow.error, "line ", lines);
    require(narrow.records.size() <= whole.records.size(), "a limit lets no more through");
}

}  // namespace orvo::fuzz
