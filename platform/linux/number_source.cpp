#include "platform/linux/number.h"
#include "platform/linux/number_text.h"

namespace orvo::runtime {

using namespace abi;

namespace {

Scaled whole(std::int64_t value) {
    auto bits = static_cast<std::uint64_t>(value);
    return {value < 0, value < 0 ? 0 - bits : bits, 0, false};
}

Scaled whole_unsigned(std::uint64_t value) { return {false, value, 0, false}; }

}  // namespace

bool number_of(const VARIANT& value, Number& number) {
    number = {};
    number.source = value.vt;
    switch (value.vt) {
        case VT_EMPTY:
            return true;
        case VT_I1:
            number.exact = whole(value.cVal);
            return true;
        case VT_I2:
        case VT_BOOL:
            number.exact = whole(value.iVal);
            return true;
        case VT_I4:
        case VT_INT:
            number.exact = whole(value.lVal);
            return true;
        case VT_I8:
            number.exact = whole(value.llVal);
            return true;
        case VT_UI1:
            number.exact = whole_unsigned(value.bVal);
            return true;
        case VT_UI2:
            number.exact = whole_unsigned(value.uiVal);
            return true;
        case VT_UI4:
        case VT_UINT:
            number.exact = whole_unsigned(value.ulVal);
            return true;
        case VT_UI8:
            number.exact = whole_unsigned(value.ullVal);
            return true;
        case VT_CY:
            number.exact = scaled_of(value.cyVal);
            return true;
        case VT_DECIMAL:
            number.exact = scaled_of(decimal_of(value));
            return true;
        case VT_R4:
            number.is_real = true;
            number.real = value.fltVal;
            return true;
        case VT_R8:
        case VT_DATE:
            number.is_real = true;
            number.real = value.dblVal;
            return true;
        default:
            return false;
    }
}

bool number_of(std::u16string_view text, char16_t currency_sign, Number& number) {
    NumberText read;
    if (!read_number(text, currency_sign, read)) return false;
    number = {};
    number.source = VT_BSTR;
    number.exact = read.number;
    number.pattern_bits = read.bits;
    return true;
}

}  // namespace orvo::runtime
