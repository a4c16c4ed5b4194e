#include "platform/objects/recordset/column.h"

#include <algorithm>

#include "platform/interfaces/late_call.h"
#include "platform/objects/recordset/conversion.h"
#include "platform/objects/recordset/errors.h"

namespace orvo::recordset {
namespace {

enum class Length : unsigned char { fixed, limited, unlimited };

struct Type {
    std::int32_t number;
    Form form;
    abi::VARTYPE kept_as;
    Length length;
    std::uint8_t size;  // of one value, in bytes; of texts and bytes, of one unit
    std::uint8_t precision;
};

constexpr Type types[] = {
    {adSmallInt, Form::number, abi::VT_I2, Length::fixed, 2, 5},
    {adInteger, Form::number, abi::VT_I4, Length::fixed, 4, 10},
    {adSingle, Form::number, abi::VT_R4, Length::fixed, 4, 7},
    {adDouble, Form::number, abi::VT_R8, Length::fixed, 8, 15},
    {adCurrency, Form::number, abi::VT_CY, Length::fixed, 8, 19},
    {adDate, Form::date, abi::VT_DATE, Length::fixed, 8, 0},
    {adBSTR, Form::text, abi::VT_BSTR, Length::unlimited, 2, 0},
    {adBoolean, Form::number, abi::VT_BOOL, Length::fixed, 2, 0},
    {adVariant, Form::any, abi::VT_VARIANT, Length::fixed, 16, 0},
    {adDecimal, Form::number, abi::VT_DECIMAL, Length::fixed, 16, 28},
    {adTinyInt, Form::number, abi::VT_I1, Length::fixed, 1, 3},
    {adUnsignedTinyInt, Form::number, abi::VT_UI1, Length::fixed, 1, 3},
    {adUnsignedSmallInt, Form::number, abi::VT_UI2, Length::fixed, 2, 5},
    {adUnsignedInt, Form::number, abi::VT_UI4, Length::fixed, 4, 10},
    {adBigInt, Form::number, abi::VT_I8, Length::fixed, 8, 19},
    {adUnsignedBigInt, Form::number, abi::VT_UI8, Length::fixed, 8, 20},
    {adFileTime, Form::date, abi::VT_DATE, Length::fixed, 8, 0},
    {adGUID, Form::text, abi::VT_BSTR, Length::fixed, 16, 0},
    {adBinary, Form::bytes, abi::VT_ARRAY | abi::VT_UI1, Length::limited, 1, 0},
    {adChar, Form::text, abi::VT_BSTR, Length::limited, 1, 0},
    {adWChar, Form::text, abi::VT_BSTR, Length::limited, 2, 0},
    {adNumeric, Form::number, abi::VT_DECIMAL, Length::fixed, 19, 28},
    {adDBDate, Form::date, abi::VT_DATE, Length::fixed, 6, 0},
    {adDBTime, Form::date, abi::VT_DATE, Length::fixed, 6, 0},
    {adDBTimeStamp, Form::date, abi::VT_DATE, Length::fixed, 16, 0},
    {adVarChar, Form::text, abi::VT_BSTR, Length::limited, 1, 0},
    {adLongVarChar, Form::text, abi::VT_BSTR, Length::unlimited, 1, 0},
    {adVarWChar, Form::text, abi::VT_BSTR, Length::limited, 2, 0},
    {adLongVarWChar, Form::text, abi::VT_BSTR, Length::unlimited, 2, 0},
    {adVarBinary, Form::bytes, abi::VT_ARRAY | abi::VT_UI1, Length::limited, 1, 0},
    {adLongVarBinary, Form::bytes, abi::VT_ARRAY | abi::VT_UI1, Length::unlimited, 1, 0},
};

constexpr std::int64_t no_limit = 0x7FFFFFFF;
constexpr std::size_t guid_characters = 38;
constexpr int deepest_default_value = 8;

const Type& type_of(std::int32_t number) {
    const auto found = std::ranges::find(types, number, &Type::number);
    if (found == std::end(types)) raise_runtime_error(wrong_arguments);
    return *found;
}

std::int32_t implied_attributes(const Type& type) {
    switch (type.length) {
        case Length::fixed:
            return adFldUpdatable | adFldFixed;
        case Length::limited:
            return adFldUpdatable;
        case Length::unlimited:
            return adFldUpdatable | adFldMayDefer | adFldLong;
    }
    return adFldUpdatable;
}

Variant default_value(Variant value) {
    for (int depth = 0; value.is_object(); ++depth) {
        const Object object = value.to<Object>();
        if (!object || depth == deepest_default_value) raise_runtime_error(wrong_type);
        value = late::value_of(object);
    }
    return value;
}

std::size_t longest_text(const Column& column) {
    return column.type == adGUID ? guid_characters : static_cast<std::size_t>(column.size);
}

Variant as_text(const Column& column, Variant value) {
    if (!value.is_text()) {
        auto text = value.is_array() ? std::nullopt : try_converted(value, abi::VT_BSTR);
        if (!text) raise_runtime_error(wrong_type);
        value = std::move(*text);
    }
    if (value.text_view().size() > longest_text(column)) raise_runtime_error(field_failed);
    return value;
}

Variant as_bytes(const Column& column, Variant value) {
    const auto bytes = value.try_bytes();
    if (!bytes) raise_runtime_error(wrong_type);
    if (static_cast<std::int64_t>(bytes->size()) > column.size) raise_runtime_error(field_failed);
    return value;
}

}  // namespace

Form Column::form() const { return type_of(type).form; }

bool Column::is_nullable() const { return type == adVariant || attributes & adFldIsNullable; }

Column described(Text name, std::int32_t number, std::int64_t size, std::int32_t attributes) {
    const Type& type = type_of(number);
    Column column{std::move(name), number, size, attributes, type.precision, 0};
    switch (type.length) {
        case Length::fixed:
            column.size = type.size;
            break;
        case Length::limited:
            if (size <= 0) raise_runtime_error(wrong_arguments);
            break;
        case Length::unlimited:
            if (size <= 0) column.size = no_limit;
            break;
    }
    if (attributes == adFldUnspecified) column.attributes = implied_attributes(type);
    return column;
}

Variant coerced(const Column& column, const Variant& given) {
    Variant value = given.is_object() ? default_value(given) : given;
    if (value.is_null()) {
        if (!column.is_nullable()) raise_runtime_error(field_failed);
        return value;
    }
    const Type& type = type_of(column.type);
    switch (type.form) {
        case Form::any:
            return value;
        case Form::text:
            return as_text(column, std::move(value));
        case Form::bytes:
            return as_bytes(column, std::move(value));
        case Form::date:
            if (value.is_empty()) raise_runtime_error(field_failed);
            break;
        case Form::number:
            break;
    }
    if (value.get()->vt == type.kept_as) return value;
    abi::HRESULT code = abi::s_ok;
    auto converted = try_converted(value, type.kept_as, &code);
    if (!converted) raise_runtime_error(code == abi::disp_e_overflow ? field_failed : wrong_type);
    return std::move(*converted);
}

Variant joined(const Column& column, const Variant& value, const Variant& added) {
    const Variant more = coerced(column, added);
    if (more.is_null() || value.is_null()) return more.is_null() ? value : more;
    if (value.is_text()) return Text(value.text_view()) + Text(more.text_view());
    return Variant::bytes(value.try_bytes().value_or("") + more.try_bytes().value_or(""));
}

Variant part_of(const Variant& value, std::size_t from, std::size_t length) {
    if (value.is_text()) {
        const TextView text = value.text_view();
        return from < text.size() ? Variant(text.substr(from, length)) : Variant::null();
    }
    const std::string bytes = value.try_bytes().value_or("");
    return from < bytes.size() ? Variant::bytes(bytes.substr(from, length)) : Variant::null();
}

std::int64_t actual_size(const Column& column, const Variant& value) {
    if (value.is_null() || value.is_empty()) return 0;
    const Type& type = type_of(column.type);
    if (type.form == Form::text && column.type != adGUID)
        return static_cast<std::int64_t>(value.text_view().size() * type.size);
    if (const auto bytes = value.try_bytes()) return static_cast<std::int64_t>(bytes->size());
    if (type.form == Form::any && value.is_text())
        return static_cast<std::int64_t>(value.text_view().size() * sizeof(char16_t));
    return type.size;
}

std::optional<std::size_t> find_column(const std::vector<Column>& columns, TextView name) {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (equal_ignoring_case(columns[i].name, name)) return i;
    return {};
}

std::size_t column_at(const std::vector<Column>& columns, const Variant& index) {
    if (index.is_text()) {
        if (const auto found = find_column(columns, index.text_view())) return *found;
    } else if (const auto place = try_converted(index, abi::VT_I4); place && !index.is_empty()) {
        const std::int32_t number = place->get()->lVal;
        if (number >= 0 && static_cast<std::size_t>(number) < columns.size())
            return static_cast<std::size_t>(number);
    }
    raise_runtime_error(no_such_item);
}

}  // namespace orvo::recordset
