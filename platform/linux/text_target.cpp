#include "platform/linux/text_target.h"

#include <string_view>

#include "platform/linux/date_text.h"
#include "platform/linux/locale.h"
#include "platform/linux/number.h"
#include "platform/linux/number_format.h"

namespace orvo::runtime {

using namespace abi;

namespace {

HRESULT put_ascii(std::string_view text, VARIANT& out) {
    BSTR made = SysAllocStringLen(nullptr, static_cast<std::uint32_t>(text.size()));
    if (!made) return e_outofmemory;
    for (std::size_t i = 0; i < text.size(); ++i) made[i] = static_cast<char16_t>(text[i]);
    VariantInit(&out);
    out.vt = VT_BSTR;
    out.bstrVal = made;
    return s_ok;
}

HRESULT put_date_text(DATE date, LCID locale, VARIANT& out) {
    if (!is_legal_date(date)) return e_invalidarg;
    DateBuffer buffer;
    return put_ascii(
        format_date(date, is_invariant(locale) ? DateStyle::invariant : DateStyle::us, buffer),
        out);
}

}  // namespace

HRESULT put_text(const VARIANT& value, LCID locale, std::uint16_t flags, VARIANT& out) {
    if (value.vt == VT_EMPTY) return put_ascii("", out);
    if (value.vt == VT_DATE) return put_date_text(value.date, locale, out);
    if (value.vt == VT_BOOL && (flags & (VARIANT_ALPHABOOL | VARIANT_LOCALBOOL)))
        return put_ascii(value.boolVal ? "True" : "False", out);
    Number number;
    if (!number_of(value, number)) return disp_e_typemismatch;
    NumberBuffer buffer;
    if (number.is_real)
        return put_ascii(format_real(number.real, value.vt == VT_R4 ? 7 : 15, buffer), out);
    return put_ascii(format_scaled(number.exact, buffer), out);
}

}  // namespace orvo::runtime
