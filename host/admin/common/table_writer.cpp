#include "host/admin/common/table_writer.h"

#include <algorithm>
#include <numeric>

#include "host/admin/common/output.h"
#include "host/admin/common/text_width.h"
#include "host/admin/common/texts.h"

namespace orvo::admin {
namespace {

constexpr std::string_view gap = "  ";

}  // namespace

void TableWriter::write(const OutputRow& row) {
    Cells cells;
    for (const std::vector<std::string>& values : row.values) {
        std::string cell;
        for (const std::string& value : written_values(values))
            cell += (cell.empty() ? "" : ", ") + printable(value);
        cells.push_back(std::move(cell));
    }
    if (!widths_.empty()) {
        write_line(cells, false);
        return;
    }
    held_.push_back(std::move(cells));
    if (held_.size() == rows_ahead) write_held();
}

void TableWriter::finish() {
    if (widths_.empty()) write_held();
}

// The widest columns give way, one column of the terminal after the other.
void TableWriter::choose_widths() {
    for (const Column& column : columns_) widths_.push_back(width_of(column.name));
    for (const Cells& cells : held_)
        for (std::size_t i = 0; i < cells.size(); ++i)
            widths_[i] = std::max(widths_[i], width_of(cells[i]));
    if (terminal_.width == 0) return;
    constexpr std::size_t narrowest = 4;
    std::size_t all = std::accumulate(widths_.begin(), widths_.end(), std::size_t{0}) +
                      (widths_.size() - 1) * gap.size();
    for (; all > terminal_.width; --all) {
        const auto widest = std::ranges::max_element(widths_);
        if (*widest <= narrowest) return;
        --*widest;
    }
}

void TableWriter::write_held() {
    choose_widths();
    Cells head;
    for (const Column& column : columns_) head.push_back(column.name);
    write_line(head, true);
    for (const Cells& cells : held_) write_line(cells, false);
    held_ = {};
}

void TableWriter::write_line(const Cells& cells, bool is_head) const {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const bool is_last = i + 1 == cells.size();
        const std::string cell = terminal_.width > 0 ? cut_to(cells[i], widths_[i]) : cells[i];
        const std::size_t width = width_of(cell);
        line += is_head ? bold(terminal_, cell) : cell;
        if (is_last) continue;
        if (width < widths_[i]) line.append(widths_[i] - width, ' ');
        line += gap;
    }
    while (line.ends_with(' ')) line.pop_back();
    put(out_, line + '\n');
}

}  // namespace orvo::admin
