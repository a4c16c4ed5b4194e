#include <string_view>

#include "platform/linux/date_text.h"
#include "platform/linux/default_value.h"
#include "platform/linux/element.h"
#include "platform/linux/locale.h"
#include "platform/linux/number.h"
#include "platform/linux/referred_value.h"
#include "platform/linux/text_target.h"
#include "platform/system/automation.h"
#include "platform/values/text.h"

// VariantChangeType: which source may become which target, and who does it.

namespace orvo::abi {

namespace {

using namespace runtime;

// An object's default value may be an object again; this many times, it is no value.
constexpr int deepest_default_value = 8;

struct Rules {
    LCID locale;
    std::uint16_t flags;
};

HRESULT change(const VARIANT& from, const Rules& rules, VARTYPE type, VARIANT& out, int depth);

HRESULT change_text(std::u16string_view text, const Rules& rules, VARTYPE type, VARIANT& out) {
    VariantInit(&out);
    out.vt = type;
    if (type == VT_BOOL) {
        if (equal_ignoring_case(text, u"True") || equal_ignoring_case(text, u"#TRUE#")) {
            out.boolVal = variant_true;
            return s_ok;
        }
        if (equal_ignoring_case(text, u"False") || equal_ignoring_case(text, u"#FALSE#"))
            return s_ok;
    }
    if (type == VT_DATE)
        return read_date(text, current_year(), out.date) ? s_ok : disp_e_typemismatch;
    Number number;
    if (!number_of(text, currency_sign(rules.locale), number)) return disp_e_typemismatch;
    return put_number(number, type, out);
}

HRESULT change_array(const VARIANT& from, VARTYPE type, VARIANT& out) {
    if (from.vt != (VT_ARRAY | VT_UI1) || type != VT_BSTR || SafeArrayGetDim(from.parray) != 1)
        return disp_e_typemismatch;
    BSTR text = SysAllocStringByteLen(static_cast<const char*>(from.parray->pvData),
                                      from.parray->rgsabound[0].cElements);
    if (!text) return e_outofmemory;
    VariantInit(&out);
    out.vt = VT_BSTR;
    out.bstrVal = text;
    return s_ok;
}

// The object's other general interface.
HRESULT change_object(const VARIANT& from, VARTYPE type, VARIANT& out) {
    if (from.vt != VT_DISPATCH && from.vt != VT_UNKNOWN) return disp_e_typemismatch;
    VariantInit(&out);
    out.vt = type;
    if (!from.punkVal) return s_ok;
    void* found = nullptr;
    HRESULT outcome =
        query_interface(from.punkVal, type == VT_DISPATCH ? iid_dispatch : iid_unknown, &found);
    if (failed(outcome)) return outcome == e_nointerface ? disp_e_typemismatch : outcome;
    out.punkVal = static_cast<IUnknown*>(found);
    return s_ok;
}

HRESULT change_default_value(const VARIANT& from, const Rules& rules, VARTYPE type, VARIANT& out,
                             int depth) {
    if (!from.pdispVal) return disp_e_badvartype;
    if ((rules.flags & VARIANT_NOVALUEPROP) || depth == deepest_default_value)
        return disp_e_typemismatch;
    VARIANT value;
    HRESULT outcome = read_default_value(from.pdispVal, value);
    if (failed(outcome)) return outcome;
    VARIANT borrowed;
    outcome = borrow_referred(value, borrowed);
    if (succeeded(outcome)) outcome = change(borrowed, rules, type, out, depth + 1);
    VariantClear(&value);
    return outcome;
}

HRESULT change(const VARIANT& from, const Rules& rules, VARTYPE type, VARIANT& out, int depth) {
    if (from.vt == type) {
        VariantInit(&out);
        return VariantCopy(&out, &from);
    }
    if (from.vt & VT_ARRAY) return change_array(from, type, out);
    if (type & (VT_ARRAY | VT_BYREF)) return disp_e_typemismatch;
    if (type == VT_DISPATCH || type == VT_UNKNOWN) return change_object(from, type, out);
    if (type == VT_ERROR || type == VT_VARIANT || from.vt == VT_NULL || from.vt == VT_ERROR)
        return disp_e_typemismatch;
    if (type == VT_EMPTY || type == VT_NULL) {
        VariantInit(&out);
        out.vt = type;
        return s_ok;
    }
    if (from.vt == VT_DISPATCH) return change_default_value(from, rules, type, out, depth);
    if (from.vt == VT_BSTR) {
        std::u16string_view text =
            from.bstrVal ? std::u16string_view(from.bstrVal, SysStringLen(from.bstrVal))
                         : std::u16string_view();
        return change_text(text, rules, type, out);
    }
    if (type == VT_BSTR) return put_text(from, rules.locale, rules.flags, out);
    Number number;
    return number_of(from, number) ? put_number(number, type, out) : disp_e_typemismatch;
}

}  // namespace

extern "C" {

HRESULT VariantChangeTypeEx(VARIANT* to, const VARIANT* from, LCID locale, std::uint16_t flags,
                            VARTYPE type) {
    if (!to || !from) return e_invalidarg;
    if (!is_variant_type(from->vt)) return disp_e_badvartype;
    if (!is_variant_type(type) && type != VT_VARIANT) return disp_e_badvartype;
    VARIANT borrowed;
    HRESULT outcome = borrow_referred(*from, borrowed);
    if (failed(outcome)) return outcome;
    if (!is_variant_type(borrowed.vt)) return disp_e_badvartype;
    if (to == from && from->vt == type) return s_ok;
    VARIANT changed;
    outcome = change(borrowed, Rules{locale, flags}, type, changed, 0);
    return failed(outcome) ? outcome : replace(to, changed);
}

HRESULT VariantChangeType(VARIANT* to, const VARIANT* from, std::uint16_t flags, VARTYPE type) {
    return VariantChangeTypeEx(to, from, fixed_locale, flags, type);
}

}  // extern "C"

}  // namespace orvo::abi
