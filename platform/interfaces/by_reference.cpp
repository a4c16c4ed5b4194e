#include "platform/interfaces/by_reference.h"

#include <cstring>
#include <utility>

#include "platform/system/vartypes.h"

namespace orvo::detail {

Variant store_through_reference(abi::VARIANT& reference, Variant& value) {
    const auto type = static_cast<abi::VARTYPE>(reference.vt & ~abi::VT_BYREF);
    if (type == abi::VT_VARIANT) {
        abi::VARIANT& to = *reference.pvarVal;
        if (to.vt & abi::VT_BYREF) return store_through_reference(to, value);
        return std::exchange(*in_place(to), std::move(value));
    }
    abi::VARIANT converted{};
    if (value.get()->vt == type)
        value.detach(converted);
    else if (abi::failed(abi::VariantChangeTypeEx(&converted, value.get(), abi::fixed_locale,
                                                  abi::VARIANT_ALPHABOOL, type)))
        return {};
    if (type == abi::VT_DECIMAL) {
        *static_cast<abi::DECIMAL*>(reference.byref) = abi::decimal_of(converted);
        return {};
    }
    // Every by-value member of the union starts at the same place, as the referred-to variable
    // does.
    const std::size_t size = type & abi::VT_ARRAY ? sizeof(void*) : abi::row_of(type).size;
    abi::VARIANT old{};
    old.vt = type;
    std::memcpy(&old.llVal, reference.byref, size);
    std::memcpy(reference.byref, &converted.llVal, size);
    return Variant::attach(old);
}

Variant* in_place(abi::VARIANT& variable) {
    static_assert(sizeof(Variant) == sizeof(abi::VARIANT));
    return reinterpret_cast<Variant*>(&variable);
}

const Variant& follow_reference(const abi::VARIANT& passed, Variant& storage) {
    const abi::VARIANT* value = &passed;
    if (value->vt == (abi::VT_BYREF | abi::VT_VARIANT)) value = value->pvarVal;
    if (!(value->vt & abi::VT_BYREF)) return reinterpret_cast<const Variant&>(*value);
    storage = Variant::copy_of(*value);
    return storage;
}

}  // namespace orvo::detail
