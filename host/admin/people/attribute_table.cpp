#include "host/admin/people/attribute_table.h"

#include <algorithm>
#include <iostream>

#include "host/admin/common/output.h"
#include "host/admin/people/catalogue.h"

namespace orvo::admin {

std::vector<Column> columns_of(const std::vector<std::string>& attributes) {
    std::vector<Column> columns;
    for (const std::string& name : attributes) columns.push_back({name, is_list(name)});
    return columns;
}

AttributeTable::AttributeTable(Format format, std::vector<std::string> attributes)
    : format_(format), attributes_(std::move(attributes)) {
    if (format_ != Format::table)
        rows_ = make_row_writer(format_, std::cout, columns_of(attributes_), {});
}

void AttributeTable::write(const OutputRow& entry) {
    if (rows_) return rows_->write(entry);
    if (is_begun_) put(std::cout, "\n");
    is_begun_ = true;
    const auto table =
        make_row_writer(format_, std::cout, {{"Attribute"}, {"Value"}}, Terminal::of_output());
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        std::vector<std::string> values = entry.values[i];
        if (values.empty()) continue;
        if (attributes_[i] == "OrvoRole")
            std::ranges::transform(values, values.begin(), shown_role);
        table->write({{}, {{attributes_[i]}, std::move(values)}});
    }
    table->finish();
}

void AttributeTable::finish() {
    if (rows_) rows_->finish();
}

}  // namespace orvo::admin
