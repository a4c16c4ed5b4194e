#pragma once

// Columns: what their types mean, and how values become theirs. On the thread of the record set;
// the default value of an object is read by a call of the object.

#include <optional>
#include <vector>

#include "platform/objects/recordset/constants.h"
#include "platform/values/variant.h"

namespace orvo::recordset {

// How the values of a type are kept.
enum class Form : unsigned char { number, date, text, bytes, any };

struct Column {
    Text name;
    std::int32_t type = adVariant;
    std::int64_t size = 0;  // texts: characters; bytes: their count; others: the type's own size
    std::int32_t attributes = adFldUnspecified;
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;

    Form form() const;
    // A column of variants takes anything, no value too.
    bool is_nullable() const;
};

// A column with what its type implies: size, precision, and the attributes where they are
// unspecified. Raises 3001 for a type that no column can have, and for a text or binary type of
// limited length that is given no length.
Column described(Text name, std::int32_t type, std::int64_t size, std::int32_t attributes);

// The value as the column keeps it. An object counts as its default value. Raises 3421 or
// 0x80040E21, as Field says.
Variant coerced(const Column& column, const Variant& value);

// Of a text or bytes: a value of the column with another one, as callers give it, behind it.
Variant joined(const Column& column, const Variant& value, const Variant& added);

// Of a text or bytes: at most `length` units from `from` on; Null where there is none.
Variant part_of(const Variant& value, std::size_t from, std::size_t length);

// As Field::ActualSize counts: texts of wide types in bytes, other texts in characters.
std::int64_t actual_size(const Column& column, const Variant& value);

// Which column has this name, without regard to case.
std::optional<std::size_t> find_column(const std::vector<Column>& columns, TextView name);

// Which column a caller means by a name or a place from 0. Raises 3265.
std::size_t column_at(const std::vector<Column>& columns, const Variant& index);

}  // namespace orvo::recordset
