#pragma once

// Criteria of Find and Filter: comparisons of columns with values. Once read they own what they
// compare with and never change.

#include "platform/objects/recordset/column.h"

namespace orvo::recordset {

enum class Comparison : unsigned char {
    less,
    at_most,
    equal,
    unequal,
    at_least,
    greater,
    begins_with,
    contains,
};

// One comparison. Texts are compared without regard to case. A cell without a value (Null, Empty)
// matches no comparison with a value; "= Null" holds for it, "<> Null" for every other cell. A cell
// that holds a list matches when one of its elements does.
class Clause {
public:
    Clause(std::size_t column, Comparison comparison, Variant value)
        : column_(column), comparison_(comparison), value_(std::move(value)) {}

    bool matches(const std::vector<Variant>& values) const { return holds_for(values[column_]); }

private:
    bool holds_for(const Variant& cell) const;
    bool holds_for_text(TextView cell) const;

    std::size_t column_;
    Comparison comparison_;
    Variant value_;  // a text, a real, a date or Null
};

// Alternatives, each a list of clauses that all match.
class Criteria {
public:
    explicit Criteria(std::vector<std::vector<Clause>> alternatives)
        : alternatives_(std::move(alternatives)) {}

    bool match(const std::vector<Variant>& values) const;

private:
    std::vector<std::vector<Clause>> alternatives_;
};

// Both raise 3001 for what cannot be read, and 3265 for a column that is not there.
//
// A text value stands in single quotes or between number signs, a date between number signs. LIKE
// takes * or % at the end, or at both ends. Find's text cannot contain a quote; Filter takes it
// doubled.
Clause read_find(TextView text, const std::vector<Column>& columns);
Criteria read_filter(TextView text, const std::vector<Column>& columns);

}  // namespace orvo::recordset
