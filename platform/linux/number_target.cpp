#include <cmath>
#include <limits>

#include "platform/linux/date_text.h"
#include "platform/linux/number.h"
#include "platform/linux/number_format.h"
#include "platform/system/vartypes.h"

namespace orvo::runtime {

using namespace abi;

namespace {

constexpr double two_to_64 = 18446744073709551616.0;

// The number as a sign and 64 bits.
bool rounded(const Number& number, bool& negative, std::uint64_t& magnitude) {
    if (number.is_real) {
        double whole = std::nearbyint(number.real);
        if (!(std::fabs(whole) < two_to_64)) return false;
        negative = whole < 0;
        magnitude = static_cast<std::uint64_t>(std::fabs(whole));
        return true;
    }
    Wide whole;
    if (!scaled_to_whole(number.exact, 0, Rounding::half_to_even, whole)) return false;
    negative = number.exact.negative && whole != 0;
    magnitude = static_cast<std::uint64_t>(whole);
    return whole == Wide{magnitude};
}

HRESULT put_integer(const Number& number, const TypeRow& row, VARIANT& out) {
    const int size_in_bits = 8 * row.size;
    const bool is_signed = row.content == Content::whole;
    bool negative;
    std::uint64_t magnitude;
    if (!rounded(number, negative, magnitude)) return disp_e_overflow;
    std::uint64_t largest = ~std::uint64_t{0} >> (64 - size_in_bits + (is_signed ? 1 : 0));
    // True has all bits set in any unsigned type; a pattern of all bits may be a negative number.
    bool as_bits = (number.source == VT_BOOL && !is_signed) ||
                   (number.pattern_bits != 0 && number.pattern_bits <= size_in_bits);
    if (!as_bits) {
        std::uint64_t limit = !negative ? largest : is_signed ? largest + 1 : 0;
        if (magnitude > limit) return disp_e_overflow;
    }
    std::uint64_t bits = negative ? 0 - magnitude : magnitude;
    std::memcpy(&out.llVal, &bits, row.size);
    return s_ok;
}

HRESULT double_of(const Number& number, double& value) {
    value = number.real;
    if (number.is_real) return s_ok;
    return scaled_to_double(number.exact, value) ? s_ok : disp_e_overflow;
}

HRESULT put_float(const Number& number, VARIANT& out) {
    double value;
    HRESULT outcome = double_of(number, value);
    if (failed(outcome)) return outcome;
    if (std::isfinite(value) && std::fabs(value) > std::numeric_limits<float>::max())
        return disp_e_overflow;
    out.fltVal = static_cast<float>(value);
    return s_ok;
}

HRESULT put_date(const Number& number, VARIANT& out) {
    HRESULT outcome = double_of(number, out.date);
    if (failed(outcome)) return outcome;
    return is_legal_date(out.date) ? s_ok : disp_e_overflow;
}

// A binary fraction is multiplied with more bits than it has, so that only real ties are ties.
HRESULT put_currency(const Number& number, VARIANT& out) {
    if (number.is_real) {
        long double scaled = std::nearbyint(static_cast<long double>(number.real) * 10000.0L);
        constexpr long double limit = 9223372036854775808.0L;
        if (!(scaled >= -limit && scaled < limit)) return disp_e_overflow;
        out.cyVal.int64 = static_cast<std::int64_t>(scaled);
        return s_ok;
    }
    Rounding rounding =
        number.source == VT_BSTR ? Rounding::half_away_from_zero : Rounding::half_to_even;
    return scaled_to_currency(number.exact, rounding, out.cyVal) ? s_ok : disp_e_overflow;
}

HRESULT put_decimal_number(const Number& number, VARIANT& out) {
    if (number.is_real && !std::isfinite(number.real)) return disp_e_overflow;
    Scaled exact = !number.is_real
                       ? number.exact
                       : rounded_to_digits(number.real, number.source == VT_R4 ? 7 : 15);
    DECIMAL decimal{};
    if (!scaled_to_decimal(exact, decimal)) return disp_e_overflow;
    put_decimal(out, decimal);
    return s_ok;
}

HRESULT put_boolean(const Number& number, VARIANT& out) {
    double value;
    HRESULT outcome = double_of(number, value);
    if (failed(outcome)) return outcome;
    bool is_zero = number.is_real ? number.real == 0 : number.exact.digits == 0;
    out.boolVal = is_zero ? variant_false : variant_true;
    return s_ok;
}

}  // namespace

HRESULT put_number(const Number& number, VARTYPE type, VARIANT& out) {
    VariantInit(&out);
    out.vt = type;
    const TypeRow& row = row_of(type);
    switch (row.content) {
        case Content::whole:
        case Content::natural:
            return put_integer(number, row, out);
        case Content::real:
            return type == VT_R4 ? put_float(number, out) : double_of(number, out.dblVal);
        case Content::date:
            return put_date(number, out);
        case Content::currency:
            return put_currency(number, out);
        case Content::decimal:
            return put_decimal_number(number, out);
        case Content::boolean:
            return put_boolean(number, out);
        default:
            return disp_e_typemismatch;
    }
}

}  // namespace orvo::runtime
