#include "platform/linux/number.h"
#include "platform/linux/number_text.h"
#include "platform/system/vartypes.h"

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
    switch (row_of(value.vt).content) {
        case Content::nothing:
            return value.vt == VT_EMPTY;
        case Content::whole:
        case Content::boolean:
            number.exact = whole(integer_in(value));
            return true;
        case Content::natural:
            number.exact = whole_unsigned(static_cast<std::uint64_t>(integer_in(value)));
            return true;
        case Content::currency:
            number.exact = scaled_of(value.cyVal);
            return true;
        case Content::decimal:
            number.exact = scaled_of(decimal_of(value));
            return true;
        case Content::real:
        case Content::date:
            number.is_real = true;
            number.real = real_in(value);
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
