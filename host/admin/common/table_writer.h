#pragma once

#include "host/admin/common/row_writer.h"

namespace orvo::admin {

// A table with a head. Its columns are as wide as the first rows need and the terminal allows.
class TableWriter : public RowWriter {
public:
    TableWriter(std::ostream& out, std::vector<Column> columns, const Terminal& terminal)
        : out_(out), columns_(std::move(columns)), terminal_(terminal) {}

    void write(const OutputRow& row) override;
    void finish() override;

private:
    using Cells = std::vector<std::string>;

    void choose_widths();
    void write_held();
    void write_line(const Cells& cells, bool is_head) const;

    std::ostream& out_;
    std::vector<Column> columns_;
    Terminal terminal_;
    std::vector<Cells> held_;          // until the widths are chosen
    std::vector<std::size_t> widths_;  // empty until then
};

// Values as a person or a text file gets them: base64 of what is no UTF-8.
std::vector<std::string> written_values(std::vector<std::string> values);

}  // namespace orvo::admin
