#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "orvo/object.h"

namespace orvo {
inline namespace client {

// One row of a record set that has been read. Copies share it.
class Row {
public:
    // The value in a column, by its name without regard to case (ASCII) or its number from 0.
    // Raises std::out_of_range for a column that is not there.
    Value operator[](std::string_view column) const;
    Value operator[](std::size_t column) const;
    std::size_t size() const;  // how many columns

private:
    friend class RecordSet;
    struct Table;
    Row(std::shared_ptr<const Table> table, std::size_t index)
        : table_(std::move(table)), index_(index) {}

    std::shared_ptr<const Table> table_;
    std::size_t index_ = 0;
};

struct Row::Table {
    std::vector<std::string> columns;
    Value cells;  // an array: column, row
    std::size_t count = 0;
};

inline std::size_t Row::size() const { return table_->columns.size(); }

inline Value Row::operator[](std::size_t column) const {
    if (column >= size()) throw std::out_of_range("there is no such column");
    abi::SAFEARRAY* array = table_->cells.get()->parray;
    std::int32_t place[] = {static_cast<std::int32_t>(column), static_cast<std::int32_t>(index_)};
    Value cell;
    detail::check(abi::SafeArrayGetElement(array, place, cell.put()));
    return cell;
}

inline Value Row::operator[](std::string_view column) const {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    const auto found = std::ranges::find_if(table_->columns, [&](const std::string& name) {
        return std::ranges::equal(name, column, {}, lower, lower);
    });
    if (found == table_->columns.end())
        throw std::out_of_range("there is no column \"" + std::string(column) + "\"");
    return (*this)[static_cast<std::size_t>(found - table_->columns.begin())];
}

// The users or profiles that a query found. As a range: its rows from the current one on, all of
// which are read, once for all copies, when the range begins; the object then stands behind the
// last one.
class RecordSet : public Object {
public:
    RecordSet() = default;
    explicit RecordSet(Object object) : Object(std::move(object)) {}
    // Copies share what has been read; nothing is moved.
    RecordSet(const RecordSet&) = default;
    RecordSet& operator=(const RecordSet&) = default;

    class iterator {
    public:
        using value_type = Row;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::forward_iterator_tag;
        using iterator_category = std::input_iterator_tag;

        iterator() = default;
        Row operator*() const { return {table_, index_}; }
        iterator& operator++() {
            ++index_;
            return *this;
        }
        iterator operator++(int) {
            iterator before = *this;
            ++index_;
            return before;
        }
        bool operator==(const iterator& other) const { return index_ == other.index_; }

    private:
        friend class RecordSet;
        iterator(std::shared_ptr<const Row::Table> table, std::size_t index)
            : table_(std::move(table)), index_(index) {}
        std::shared_ptr<const Row::Table> table_;
        std::size_t index_ = 0;
    };

    iterator begin() const { return {table(), 0}; }
    iterator end() const { return {table(), table()->count}; }
    std::size_t size() const { return table()->count; }
    bool empty() const { return size() == 0; }
    const std::vector<std::string>& columns() const { return table()->columns; }

private:
    const std::shared_ptr<const Row::Table>& table() const {
        if (!*table_) *table_ = read();
        return *table_;
    }
    std::shared_ptr<const Row::Table> read() const {
        auto table = std::make_shared<Row::Table>();
        const Object fields = get("Fields").to<Object>();
        const auto columns = fields.get("Count").to<std::int32_t>();
        for (std::int32_t i = 0; i < columns; ++i)
            table->columns.push_back(
                fields.get("Item", i).to<Object>().get("Name").to<std::string>());
        if (!get("EOF").to<bool>()) {
            table->cells = call("GetRows");
            std::int32_t last = -1;
            detail::check(abi::SafeArrayGetUBound(table->cells.get()->parray, 2, &last));
            table->count = static_cast<std::size_t>(last + 1);
        }
        return table;
    }

    using Shared = std::shared_ptr<const Row::Table>;
    std::shared_ptr<Shared> table_ = std::make_shared<Shared>();  // null until it is read
};

}  // namespace client
}  // namespace orvo
