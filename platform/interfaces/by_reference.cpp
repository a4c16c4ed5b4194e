#include "platform/interfaces/by_reference.h"

namespace orvo::detail {

void store_through_reference(abi::VARIANT& reference, const Variant& value) {
    const auto type = static_cast<abi::VARTYPE>(reference.vt & ~abi::VT_BYREF);
    if (type == abi::VT_VARIANT) {
        abi::VARIANT& to = *reference.pvarVal;
        if (to.vt & abi::VT_BYREF)
            store_through_reference(to, value);
        else
            abi::VariantCopy(&to, value.get());
        return;
    }
    abi::VARIANT converted{};
    if (abi::failed(abi::VariantChangeTypeEx(&converted, value.get(), abi::fixed_locale,
                                             abi::VARIANT_ALPHABOOL, type)))
        return;
    abi::VARIANT old{};
    old.vt = type;
    // Every by-value member of the union starts at the same place, as the referred-to variable
    // does.
    auto exchange = [&]<class T>(T*) {
        T now;
        std::memcpy(&now, &converted.bVal, sizeof now);
        std::memcpy(&old.bVal, reference.byref, sizeof now);
        std::memcpy(reference.byref, &now, sizeof now);
    };
    switch (type) {
        case abi::VT_I1:
        case abi::VT_UI1:
            exchange(static_cast<std::uint8_t*>(nullptr));
            break;
        case abi::VT_I2:
        case abi::VT_UI2:
        case abi::VT_BOOL:
            exchange(static_cast<std::int16_t*>(nullptr));
            break;
        case abi::VT_I4:
        case abi::VT_UI4:
        case abi::VT_INT:
        case abi::VT_UINT:
        case abi::VT_R4:
        case abi::VT_ERROR:
            exchange(static_cast<std::int32_t*>(nullptr));
            break;
        case abi::VT_DECIMAL:
            *static_cast<abi::DECIMAL*>(reference.byref) = abi::decimal_of(converted);
            return;
        default:
            exchange(static_cast<std::int64_t*>(nullptr));
            break;
    }
    abi::VariantClear(&old);
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
