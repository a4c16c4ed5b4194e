#include "host/admin/common/row_writer.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/admin/common/output.h"
#include "host/admin/common/table_writer.h"
#include "host/admin/common/texts.h"
#include "host/admin/common/value_list.h"
#include "suite/directory/ldif/base64.h"
#include "suite/directory/ldif/ldif_writer.h"

namespace orvo::admin {
namespace {

constexpr std::array<std::pair<std::string_view, Format>, 4> formats{{{"table", Format::table},
                                                                      {"csv", Format::csv},
                                                                      {"json", Format::json},
                                                                      {"ldif", Format::ldif}}};

std::string csv_cell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string cell = "\"";
    for (const char c : text) {
        if (c == '"') cell += c;
        cell += c;
    }
    return cell + '"';
}

class CsvWriter : public RowWriter {
public:
    CsvWriter(std::ostream& out, const std::vector<Column>& columns) : out_(out) {
        std::string line;
        for (const Column& column : columns) line += "," + csv_cell(column.name);
        put(out_, line.substr(1) + "\r\n");
    }
    void write(const OutputRow& row) override {
        std::string line;
        for (const auto& values : row.values)
            line += "," + csv_cell(joined_values(written_values(values)));
        put(out_, line.substr(1) + "\r\n");
    }
    void finish() override {}

private:
    std::ostream& out_;
};

std::string json_text(const std::string& text) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += {'\\', c};
        else if (c == '\n')
            quoted += "\\n";
        else if (static_cast<unsigned char>(c) < ' ' || c == '\x7F')
            quoted += {'\\', 'u', '0', '0', digits[c >> 4 & 15], digits[c & 15]};
        else
            quoted += c;
    }
    return quoted + '"';
}

class JsonWriter : public RowWriter {
public:
    JsonWriter(std::ostream& out, std::vector<Column> columns)
        : out_(out), columns_(std::move(columns)) {}
    void write(const OutputRow& row) override {
        std::string text = is_begun_ ? ",\n  {" : "[\n  {";
        is_begun_ = true;
        for (std::size_t i = 0; i < columns_.size(); ++i)
            text += (i > 0 ? ", " : "") + json_text(columns_[i].name) + ": " +
                    json_values(columns_[i], written_values(row.values[i]));
        put(out_, text + "}");
    }
    void finish() override { put(out_, is_begun_ ? "\n]\n" : "[]\n"); }

private:
    static std::string json_values(const Column& column, const std::vector<std::string>& values) {
        if (!column.is_list && values.size() < 2)
            return values.empty() ? "null" : json_text(values.front());
        std::string text = "[";
        for (const std::string& value : values)
            text += (text.size() > 1 ? ", " : "") + json_text(value);
        return text + "]";
    }

    std::ostream& out_;
    std::vector<Column> columns_;
    bool is_begun_ = false;
};

class LdifRows : public RowWriter {
public:
    LdifRows(std::ostream& out, std::vector<Column> columns)
        : out_(out), columns_(std::move(columns)) {}
    void write(const OutputRow& row) override {
        directory::EntryData entry{row.name, {}};
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (!row.values[i].empty())
                entry.attributes.push_back({columns_[i].name, row.values[i]});
        std::string text;
        append_ldif(text, entry);
        put(out_, text);
    }
    void finish() override {}

private:
    std::ostream& out_;
    std::vector<Column> columns_;
};

}  // namespace

std::vector<std::string> written_values(std::vector<std::string> values) {
    for (std::string& value : values)
        if (!is_utf8(value)) value = directory::base64(value);
    return values;
}

std::optional<Format> try_format(std::string_view name) {
    const auto found = std::ranges::find(formats, name, &decltype(formats)::value_type::first);
    return found == formats.end() ? std::nullopt : std::optional(found->second);
}

std::string_view name_of(Format format) {
    return std::ranges::find(formats, format, &std::pair<std::string_view, Format>::second)->first;
}

std::unique_ptr<RowWriter> make_row_writer(Format format, std::ostream& out,
                                           std::vector<Column> columns, const Terminal& terminal) {
    switch (format) {
        case Format::csv:
            return std::make_unique<CsvWriter>(out, columns);
        case Format::json:
            return std::make_unique<JsonWriter>(out, std::move(columns));
        case Format::ldif:
            return std::make_unique<LdifRows>(out, std::move(columns));
        case Format::table:
            break;
    }
    return std::make_unique<TableWriter>(out, std::move(columns), terminal);
}

}  // namespace orvo::admin
