#include "platform/linux/default_value.h"

namespace orvo::runtime {

using namespace abi;

namespace {

constexpr LCID user_default_locale = 0x400;
constexpr IID iid_null{};

}  // namespace

HRESULT read_default_value(IDispatch* object, VARIANT& value) {
    DISPPARAMS no_arguments{};
    VariantInit(&value);
    add_ref(object);
    const HRESULT outcome = call_slot<HRESULT, DISPID, const IID*, LCID, std::uint16_t, DISPPARAMS*,
                                      VARIANT*, EXCEPINFO*, std::uint32_t*>(
        object, slot_invoke, DISPID_VALUE, &iid_null, user_default_locale, DISPATCH_PROPERTYGET,
        &no_arguments, &value, nullptr, nullptr);
    release(object);
    return outcome;
}

}  // namespace orvo::runtime
