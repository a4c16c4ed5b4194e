#pragma once

// Entries as rows of a record set.

#include <string>
#include <string_view>
#include <vector>

#include "platform/values/variant.h"
#include "suite/directory/entries/entry_data.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory {

// The names that a caller asks for as columns, as they are spelled: an array of texts, or one text
// with commas between the names. One that is there twice is two columns. Raises result code 89
// where there are none, for an empty name and for one that holds a NUL or half of a surrogate pair,
// which would be another name; 13 for anything else.
std::vector<Text> column_names(const Variant& attributes);

// Makes a row of an entry: for each column no value is Empty, one is itself, several are an array;
// typed by the schema. The attribute that names the entry is one value, that in the name, so that
// every row has its place in the order (entry_order.h). A column's name may be any of its
// attribute's names or its number, in any case, with options. What it has learned of one entry's
// spelling serves for the next.
class RowDecoder {
public:
    // `types` must live as long.
    RowDecoder(const std::vector<std::string>& columns, const AttributeTypes& types);

    std::vector<Variant> row(const EntryData& entry);

private:
    struct Column {
        std::string name;
        const AttributeType* type;
    };
    // A spelling of the server's, and the columns that it fills: none for a subtype that comes
    // along, two where a caller asks for one attribute twice.
    struct Spelling {
        std::string name;
        std::vector<std::size_t> columns;
    };

    const Spelling& spelling_of(std::string_view name);

    const AttributeTypes& types_;
    std::vector<Column> columns_;
    std::vector<Spelling> spellings_;
};

}  // namespace orvo::directory
