#include "platform/linux/referred_value.h"

#include <cstring>

#include "platform/linux/element.h"

namespace orvo::runtime {

using namespace abi;

HRESULT borrow_referred(const VARIANT& from, VARIANT& value) {
    if (!(from.vt & VT_BYREF)) {
        value = from;
        return s_ok;
    }
    if (!from.byref) return e_invalidarg;
    VARTYPE type = from.vt & ~VT_BYREF;
    if (type == VT_VARIANT) {
        if (from.pvarVal->vt == (VT_VARIANT | VT_BYREF)) return e_invalidarg;
        return borrow_referred(*from.pvarVal, value);
    }
    VariantInit(&value);
    value.vt = type;
    if (type & VT_ARRAY)
        value.parray = *from.pparray;
    else if (type == VT_DECIMAL)
        put_decimal(value, *from.pdecVal);
    else
        std::memcpy(&value.llVal, from.byref, row_of(type).size);
    return s_ok;
}

HRESULT replace(VARIANT* to, VARIANT value) {
    HRESULT outcome = VariantClear(to);
    if (failed(outcome)) {
        VariantClear(&value);
        return outcome;
    }
    *to = value;
    return s_ok;
}

}  // namespace orvo::runtime
