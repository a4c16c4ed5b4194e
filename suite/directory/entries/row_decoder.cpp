#include "suite/directory/entries/row_decoder.h"

#include "platform/values/values.h"
#include "suite/directory/entries/entry_order.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/schema/attribute_values.h"

namespace orvo::directory {
namespace {

Variant decoded(const AttributeType* type, const std::vector<std::string>& values) {
    if (values.empty()) return {};
    if (values.size() == 1 && type) return decode_value(type->syntax, values.front());
    Values typed = decode_values(type, values);
    if (values.size() == 1) return std::move(typed[0]);
    return typed;
}

}  // namespace

std::vector<Text> column_names(const Variant& attributes) {
    std::vector<Text> names;
    if (attributes.is_text()) {
        for (const Text& name : split(attributes.text_view(), u",")) names.push_back(trimmed(name));
    } else if (!attributes.is_empty()) {
        for (const Variant& name : attributes.to<Values>()) names.push_back(name.to<Text>());
    }
    if (names.empty()) raise_code(result_code::parameter_error, "No attributes are asked for.");
    for (const Text& name : names) {
        if (name.empty())
            raise_code(result_code::parameter_error, "The name of an attribute is empty.");
        if (!is_well_formed(name) || name.find(u'\0') != Text::npos)
            raise_code(result_code::parameter_error,
                       "The name of an attribute holds a NUL or half of a surrogate pair.");
    }
    return names;
}

RowDecoder::RowDecoder(const std::vector<std::string>& columns, const AttributeTypes& types)
    : types_(types) {
    for (const std::string& column : columns) columns_.push_back({column, types.find(column)});
}

std::vector<Variant> RowDecoder::row(const EntryData& entry) {
    std::vector<Variant> row(columns_.size());
    for (const Attribute& attribute : entry.attributes)
        for (const std::size_t column : spelling_of(attribute.name).columns)
            row[column] = decoded(columns_[column].type, attribute.values);
    const NamingPart naming = naming_part(entry.name);
    for (const std::size_t column : spelling_of(naming.attribute).columns)
        row[column] = decoded(columns_[column].type, {naming.value});
    return row;
}

const RowDecoder::Spelling& RowDecoder::spelling_of(std::string_view name) {
    for (const Spelling& spelling : spellings_)
        if (spelling.name == name) return spelling;
    Spelling& added = spellings_.emplace_back(Spelling{std::string(name), {}});
    for (std::size_t column = 0; column < columns_.size(); ++column)
        if (types_.same(columns_[column].name, name)) added.columns.push_back(column);
    return added;
}

}  // namespace orvo::directory
