#pragma once

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace orvo {

// A table for reading: the first column is text, the others are figures.
class Table {
public:
    explicit Table(std::vector<std::string> head) { rows_.push_back(std::move(head)); }
    void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
    void print(std::ostream& out) const {
        std::vector<std::size_t> widths(rows_.front().size());
        for (const auto& row : rows_)
            for (std::size_t i = 0; i < row.size(); ++i)
                widths[i] = std::max(widths[i], row[i].size());
        for (const auto& row : rows_) {
            for (std::size_t i = 0; i < row.size(); ++i) {
                const std::string gap(widths[i] - row[i].size(), ' ');
                out << (i == 0 ? row[i] + gap : "  " + gap + row[i]);
            }
            out << '\n';
        }
    }

private:
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace orvo
