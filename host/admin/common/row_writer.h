#pragma once

// Rows of columns, as a list command prints them. Texts are UTF-8, values may be octets.

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "host/admin/common/terminal.h"

namespace orvo::admin {

enum class Format { table, csv, json, ldif };

// Nothing for another name than "table", "csv", "json" or "ldif".
std::optional<Format> try_format(std::string_view name);
std::string_view name_of(Format format);

struct Column {
    std::string name;      // the attribute's
    bool is_list = false;  // an array in JSON, however many values there are
};

struct OutputRow {
    std::string name;                              // of the entry, for LDIF
    std::vector<std::vector<std::string>> values;  // of each column
};

//   table  as wide as the terminal, what is too long is cut; elsewhere as wide as it is. Several
//          values have ", " between them
//   csv    RFC 4180: a line of names, then one of each row, CR and LF at the ends. Several values
//          are in one cell (value_list.h)
//   json   an array of objects; what has several values is an array, what has none null
//   ldif   an entry for each row, with these attributes
//
// In all but LDIF, octets that are no UTF-8 are written as base64. No more than `rows_ahead` rows
// are held.
class RowWriter {
public:
    static constexpr std::size_t rows_ahead = 1000;  // a table's columns fit these

    virtual ~RowWriter() = default;
    // Raises std::runtime_error where `out` takes no more.
    virtual void write(const OutputRow& row) = 0;
    // Comes last.
    virtual void finish() = 0;
};

// `out` lives longer.
std::unique_ptr<RowWriter> make_row_writer(Format format, std::ostream& out,
                                           std::vector<Column> columns, const Terminal& terminal);

}  // namespace orvo::admin
