#include "host/admin/transfer/import_source.h"

#include <csv.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/admin/common/names.h"
#include "host/admin/common/texts.h"
#include "host/admin/common/value_list.h"
#include "host/admin/transfer/csv_reader.h"
#include "platform/values/text.h"
#include "suite/directory/ldif/ldif_reader.h"
#include "suite/directory/ldif/ldif_writer.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/distinguished_name.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::admin {
namespace {

using directory::ascii::equal_ignoring_case;

bool is_password(std::string_view attribute) {
    return directory::is_password(attribute) || equal_ignoring_case(attribute, "password");
}

bool is_blank(const std::string& text) {
    return text.find_first_not_of(" \t") == std::string::npos;
}

// What another directory keeps of a password would be taken for the password itself: whoever has
// seen it could log in with it, and the user could not.
void refuse_hash(ImportRow& row) {
    if (row.fault.empty() && directory::is_known_hash(row.password))
        row.fault = "its password is a hash, and passwords alone are taken: leave it out";
}

// What a file of refused rows says of them.
bool is_remark(std::string_view column) { return column.starts_with('#'); }

std::string csv_cell(const std::string& cell) {
    std::string text(2 * cell.size() + 2, '\0');
    text.resize(csv_write(text.data(), text.size(), cell.data(), cell.size()));
    return text;
}

class CsvSource : public ImportSource {
public:
    CsvSource(std::istream& in, const UserPlace& place) : reader_(in) {
        std::optional<CsvRow> head = reader_.next();
        if (!head) throw std::runtime_error("the file is empty");
        for (const std::string& cell : head->cells)
            columns_.push_back(to_utf8(trimmed(from_utf8(cell))));
        for (std::size_t i = 0; i < columns_.size(); ++i) look_at(i, head->line);
        const auto named = find_column(place.naming_attribute);
        name_ = named ? named : find_column("cn");
        if (!name_)
            throw CsvError(head->line, "no column is named " + place.naming_attribute +
                                           "; the first line has the attributes' names");
    }

    std::optional<ImportRow> next() override {
        std::optional<CsvRow> read = reader_.next();
        if (!read) return {};
        ImportRow row{.line = read->line};
        std::vector<std::string>& cells = read->cells;
        if (cells.size() != columns_.size())
            row.fault = "it has " + std::to_string(cells.size()) + " cells, and the first line " +
                        std::to_string(columns_.size());
        // A row of another length stays one, until somebody corrects it.
        for (std::size_t i = 0; i < cells.size(); ++i) write(i, cells[i], row);
        cells.resize(columns_.size());
        const std::vector<std::string> names = split_values(cells[*name_]);
        if (!names.empty()) row.name = names.front();
        if (row.fault.empty() && is_blank(row.name)) row.fault = "it has no name";
        if (row.fault.empty() && names.size() > 1) row.fault = "it has several names";
        for (std::size_t i = 0; i < columns_.size(); ++i) take(i, cells[i], row);
        refuse_hash(row);
        return row;
    }

    std::string head_of_refused() const override {
        std::string line;
        for (const std::string& column : columns_)
            if (!is_remark(column)) line += csv_cell(column) + ",";
        return line + "#line,#reason\r\n";
    }
    std::string refused(const ImportRow& row, const std::string& reason) const override {
        return row.written + std::to_string(row.line) + "," + csv_cell(reason) + "\r\n";
    }

private:
    void look_at(std::size_t column, std::int64_t line) const {
        const std::string& name = columns_[column];
        if (name.empty())
            throw CsvError(line, "column " + std::to_string(column + 1) + " has no name");
        const auto is_same = [&](const std::string& other) {
            return equal_ignoring_case(name, other);
        };
        if (std::ranges::count_if(columns_, is_same) > 1)
            throw CsvError(line, "two columns are named " + name);
    }

    std::optional<std::size_t> find_column(std::string_view attribute) const {
        const auto found = std::ranges::find_if(columns_, [&](const std::string& name) {
            return equal_ignoring_case(name, attribute);
        });
        if (found == columns_.end()) return {};
        return static_cast<std::size_t>(found - columns_.begin());
    }

    void write(std::size_t column, const std::string& cell, ImportRow& row) const {
        const std::string name = column < columns_.size() ? columns_[column] : std::string();
        if (!is_remark(name)) row.written += csv_cell(is_password(name) ? "" : cell) + ",";
    }

    void take(std::size_t column, const std::string& cell, ImportRow& row) const {
        const std::string& attribute = columns_[column];
        if (is_remark(attribute)) return;
        if (is_password(attribute))
            row.password = cell;
        else if (column != *name_ && !cell.empty())
            row.attributes.push_back({attribute, split_values(cell)});
    }

    CsvReader reader_;
    std::vector<std::string> columns_;
    std::optional<std::size_t> name_;
};

class LdifSource : public ImportSource {
public:
    LdifSource(std::istream& in, UserPlace place) : reader_(in), place_(std::move(place)) {}

    std::optional<ImportRow> next() override {
        std::optional<directory::LdifRecord> record = reader_.next();
        if (!record) return {};
        using Kind = directory::LdifRecord::Kind;
        ImportRow row{.line = record->line, .name = name_of(record->entry)};
        if (record->kind != Kind::entry && record->kind != Kind::add)
            row.fault = "it is a change of an entry; users are imported from entries";
        else if (!is_user(record->entry.name, row.name))
            row.fault =
                "it is no user's entry: " + place_.naming_attribute + "=…," + place_.container;
        std::erase_if(record->entry.attributes, [&](const directory::Attribute& attribute) {
            if (!is_password(attribute.name)) return false;
            if (!attribute.values.empty()) row.password = attribute.values.front();
            return true;
        });
        refuse_hash(row);
        append_ldif(row.written, record->entry);
        for (directory::Attribute& attribute : record->entry.attributes)
            if (!equal_ignoring_case(attribute.name, place_.naming_attribute) &&
                !equal_ignoring_case(attribute.name, "objectClass"))
                row.attributes.push_back({attribute.name, std::move(attribute.values)});
        return row;
    }

    std::string head_of_refused() const override { return "version: 1\n\n"; }
    std::string refused(const ImportRow& row, const std::string& reason) const override {
        return "# line " + std::to_string(row.line) + ": " + printable(reason) + "\n" + row.written;
    }

private:
    std::string name_of(const directory::EntryData& entry) const {
        for (const directory::Attribute& attribute : entry.attributes)
            if (equal_ignoring_case(attribute.name, place_.naming_attribute) &&
                !attribute.values.empty())
                return attribute.values.front();
        return entry.name;
    }

    bool is_user(const std::string& entry, const std::string& name) const {
        using directory::DistinguishedName;
        const std::string expected =
            place_.naming_attribute + "=" + as_name_value(name) + "," + place_.container;
        const auto found = DistinguishedName::try_parse(from_utf8(entry));
        return found && found == DistinguishedName::try_parse(from_utf8(expected));
    }

    directory::LdifReader reader_;
    const UserPlace place_;
};

// Looks at the beginning, and leaves it to be read.
bool is_ldif(std::istream& in) {
    std::string begin;
    std::size_t first = 0;  // behind empty lines
    while (begin.size() < first + 4 && in.peek() != std::istream::traits_type::eof()) {
        begin += static_cast<char>(in.get());
        if (begin.size() == first + 1 && (begin.back() == '\n' || begin.back() == '\r')) ++first;
    }
    in.clear();
    for (auto c = begin.rbegin(); c != begin.rend(); ++c) in.putback(*c);
    const std::string_view line = std::string_view(begin).substr(first);
    // Of the two, LDIF alone has comments.
    return line.starts_with('#') || equal_ignoring_case(line.substr(0, 3), "dn:") ||
           equal_ignoring_case(line, "vers");
}

}  // namespace

std::unique_ptr<ImportSource> open_import(std::istream& in, const UserPlace& place) {
    if (is_ldif(in)) return std::make_unique<LdifSource>(in, place);
    return std::make_unique<CsvSource>(in, place);
}

}  // namespace orvo::admin
