#pragma once

// Records as one array or one text, which become the caller's. On the thread of the cursor; all
// raise what moving the cursor raises.

#include "platform/objects/recordset/cursor.h"

namespace orvo::recordset {

// The columns that a caller names: all where left out, otherwise a name or place, or an array of
// them. Raises 3265.
std::vector<std::size_t> chosen_columns(const Cursor& cursor, const Variant& fields);

// An array of columns × records.
Variant get_rows(Cursor& cursor, std::int32_t count, const Variant& start, const Variant& fields);

// What stands between columns, behind each record, and for no value.
struct Delimiters {
    Text column = u"\t";
    Text row = u"\r";
    Text null;
};

// The elements of a list of values are joined by ", ".
Text get_string(Cursor& cursor, std::int32_t count, const Delimiters& delimiters);

}  // namespace orvo::recordset
