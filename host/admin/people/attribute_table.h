#pragma once

// Entries with many attributes. For sources that use the component's client.

#include <memory>
#include <string>
#include <vector>

#include "host/admin/common/row_writer.h"
#include "host/admin/people/entry_values.h"

namespace orvo::admin {

std::vector<Column> columns_of(const std::vector<std::string>& attributes);

// Entries to standard output: in the form of a table each is one of its own, with a line for each
// attribute that the entry has, and an empty line between two; in the other forms a row.
class AttributeTable {
public:
    AttributeTable(Format format, std::vector<std::string> attributes);

    // The values of each attribute.
    void write(const OutputRow& entry);
    void finish();

private:
    Format format_;
    std::vector<std::string> attributes_;
    std::unique_ptr<RowWriter> rows_;  // nothing for tables
    bool is_begun_ = false;
};

}  // namespace orvo::admin
