#include "platform/interfaces/crossing.h"

namespace orvo {

std::uint8_t crossing<std::uint8_t>::from_late(const Variant& value) {
    Variant converted;
    const abi::HRESULT code =
        abi::VariantChangeTypeEx(converted.put(), value.get(), abi::fixed_locale, 0, abi::VT_UI1);
    if (abi::failed(code)) raise_runtime_error(number_of_result(code));
    return converted.get()->bVal;
}

Variant crossing<std::uint8_t>::to_late(std::uint8_t value) {
    abi::VARIANT raw{};
    raw.vt = abi::VT_UI1;
    raw.bVal = value;
    return Variant::attach(raw);
}

Values crossing<Values>::copy(raw value) {
    if (value == nullptr) return {};
    abi::VARIANT borrowed{};
    borrowed.vt = abi::VT_ARRAY;
    abi::VARTYPE element = abi::VT_VARIANT;
    abi::SafeArrayGetVartype(value, &element);
    borrowed.vt = static_cast<abi::VARTYPE>(abi::VT_ARRAY | element);
    borrowed.parray = value;
    return Variant::copy_of(borrowed).to<Values>();
}

Values crossing<Values>::take(raw& value) {
    if (value == nullptr) return {};
    abi::VARTYPE element = abi::VT_VARIANT;
    abi::SafeArrayGetVartype(value, &element);
    if (element == abi::VT_VARIANT && abi::SafeArrayGetDim(value) == 1)
        return Values::attach(std::exchange(value, nullptr));
    // An array that cannot be converted stays its owner's.
    Values converted = copy(value);
    abi::SafeArrayDestroy(std::exchange(value, nullptr));
    return converted;
}

}  // namespace orvo
