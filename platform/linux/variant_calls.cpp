#include <cstring>
#include <utility>

#include "platform/linux/element.h"
#include "platform/linux/referred_value.h"
#include "platform/system/automation.h"

namespace orvo::abi {

namespace {

using runtime::copy_text;
using runtime::is_variant_type;

// Copies what `from` owns into `to`, of which nothing is read.
HRESULT duplicate(const VARIANT& from, VARIANT& to) {
    to = from;
    if (from.vt & VT_BYREF) return s_ok;
    if (from.vt & VT_ARRAY) return SafeArrayCopy(from.parray, &to.parray);
    switch (row_of(from.vt).content) {
        case Content::text:
            return copy_text(from.bstrVal, to.bstrVal) ? s_ok : e_outofmemory;
        case Content::object:
            if (from.punkVal) add_ref(from.punkVal);
            return s_ok;
        default:
            return s_ok;
    }
}

}  // namespace

extern "C" {

void VariantInit(VARIANT* value) { std::memset(value, 0, sizeof *value); }

HRESULT VariantClear(VARIANT* value) {
    if (!value) return e_invalidarg;
    VARTYPE type = value->vt;
    if (!is_variant_type(type)) return disp_e_badvartype;
    if (!(type & VT_BYREF)) {
        if (type & VT_ARRAY) {
            HRESULT outcome = SafeArrayDestroy(value->parray);
            if (failed(outcome)) return outcome;
        } else if (type == VT_BSTR) {
            SysFreeString(value->bstrVal);
        } else if ((type == VT_DISPATCH || type == VT_UNKNOWN) && value->punkVal) {
            // The object's end may run code that looks at this variant: it is empty by then.
            value->vt = VT_EMPTY;
            release(std::exchange(value->punkVal, nullptr));
        }
    }
    VariantInit(value);
    return s_ok;
}

HRESULT VariantCopy(VARIANT* to, const VARIANT* from) {
    if (!to || !from) return e_invalidarg;
    if (is_plain(from->vt) && is_plain(to->vt)) {
        *to = *from;
        return s_ok;
    }
    if (!is_variant_type(from->vt)) return disp_e_badvartype;
    if (to == from) return s_ok;
    // Copied before `to` is cleared: `from` may lie inside what `to` owns.
    VARIANT copy;
    HRESULT outcome = duplicate(*from, copy);
    return failed(outcome) ? outcome : runtime::replace(to, copy);
}

HRESULT VariantCopyInd(VARIANT* to, const VARIANT* from) {
    if (!to || !from) return e_invalidarg;
    if (!(from->vt & VT_BYREF)) return VariantCopy(to, from);
    if (!is_variant_type(from->vt)) return disp_e_badvartype;
    VARIANT value;
    HRESULT outcome = runtime::borrow_referred(*from, value);
    if (failed(outcome)) return outcome;
    if (!is_variant_type(value.vt)) return disp_e_badvartype;
    VARIANT copy;
    outcome = duplicate(value, copy);
    return failed(outcome) ? outcome : runtime::replace(to, copy);
}

}  // extern "C"

}  // namespace orvo::abi
