#pragma once

// What each VARTYPE is: one row a type. Whoever needs the size of a type, what its values own or
// how their bytes read asks here. Any thread; nothing fails.

#include <array>

#include "platform/system/automation.h"

namespace orvo::abi {

// What the bytes of a value say.
enum class Content : std::uint8_t {
    unknown,  // no value has such a type
    nothing,
    whole,    // an integer with a sign, as long as the row says
    natural,  // an integer without one
    boolean,
    real,  // a binary fraction, as long as the row says
    date,
    currency,
    decimal,
    code,     // a result code
    text,     // owns a BSTR, or none
    object,   // owns a reference, or none
    variant,  // a value of any type; only in an array or behind a reference
};

struct TypeRow {
    VARTYPE type;
    Content content = Content::unknown;
    std::uint8_t size = 0;  // in bytes, in an array or behind a reference; 0: it stands in neither
    const char* idl = "";   // as IDL writes it
};

inline constexpr TypeRow type_rows[] = {
    {VT_EMPTY, Content::nothing},
    {VT_NULL, Content::nothing},
    {VT_I2, Content::whole, 2, "short"},
    {VT_I4, Content::whole, 4, "long"},
    {VT_R4, Content::real, 4, "float"},
    {VT_R8, Content::real, 8, "double"},
    {VT_CY, Content::currency, 8, "CURRENCY"},
    {VT_DATE, Content::date, 8, "DATE"},
    {VT_BSTR, Content::text, sizeof(BSTR), "BSTR"},
    {VT_DISPATCH, Content::object, sizeof(IDispatch*), "IDispatch*"},
    {VT_ERROR, Content::code, 4, "SCODE"},
    {VT_BOOL, Content::boolean, 2, "VARIANT_BOOL"},
    {VT_VARIANT, Content::variant, sizeof(VARIANT), "VARIANT"},
    {VT_UNKNOWN, Content::object, sizeof(IUnknown*), "IUnknown*"},
    {VT_DECIMAL, Content::decimal, sizeof(DECIMAL), "DECIMAL"},
    {VT_I1, Content::whole, 1, "signed char"},
    {VT_UI1, Content::natural, 1, "unsigned char"},
    {VT_UI2, Content::natural, 2, "unsigned short"},
    {VT_UI4, Content::natural, 4, "unsigned long"},
    {VT_I8, Content::whole, 8, "hyper"},
    {VT_UI8, Content::natural, 8, "unsigned hyper"},
    {VT_INT, Content::whole, 4, "int"},
    {VT_UINT, Content::natural, 4, "unsigned int"},
};

namespace detail {

inline constexpr auto rows_by_type = [] {
    std::array<TypeRow, 32> rows{};
    for (const TypeRow& row : type_rows) rows[row.type] = row;
    return rows;
}();

inline constexpr std::uint32_t plain_types = [] {
    std::uint32_t types = 0;
    for (const TypeRow& row : type_rows)
        if (row.content < Content::text) types |= 1u << row.type;
    return types;
}();

}  // namespace detail

// The row of a type that is neither an array nor a reference; a row of unknown content and no size
// for all others.
constexpr const TypeRow& row_of(VARTYPE type) {
    const auto& rows = detail::rows_by_type;
    return type < rows.size() ? rows[type] : rows[VT_VOID];
}

// Whether a value of the type is nothing but its bytes: no memory and no reference behind it.
constexpr bool is_plain(VARTYPE type) { return type < 32 && (detail::plain_types >> type & 1); }

// The integer that stands in a value of whole or natural content, a boolean or a result code; a
// natural one of 64 bits as its bits.
inline std::int64_t integer_in(const VARIANT& value) {
    const TypeRow& row = row_of(value.vt);
    const int unused = 64 - 8 * row.size;
    const std::uint64_t bits = value.ullVal << unused;
    return row.content == Content::natural ? static_cast<std::int64_t>(bits >> unused)
                                           : static_cast<std::int64_t>(bits) >> unused;
}

// The binary fraction that stands in a value of real content or a date.
inline double real_in(const VARIANT& value) {
    return row_of(value.vt).size == sizeof(float) ? static_cast<double>(value.fltVal)
                                                  : value.dblVal;
}

}  // namespace orvo::abi
