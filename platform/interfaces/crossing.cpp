#include "platform/interfaces/crossing.h"

#include "platform/interfaces/by_reference.h"

namespace orvo {
namespace detail {

variant_slot::variant_slot(abi::VARIANT& slot) : slot_(slot) {
    if (slot.vt & abi::VT_BYREF) {
        before_ = copied_ = Variant::copy_of(slot);
        seen_ = &copied_;
    } else {
        seen_ = in_place(slot);
    }
}

variant_slot::~variant_slot() {
    if (seen_ != &copied_) return;
    if (!(copied_ == before_)) store_through_reference(slot_, copied_).wipe();
    copied_.wipe();
    before_.wipe();
}

variant_variable::~variant_variable() {
    abi::VARIANT& left = *value_.lend();
    if (!(left.vt & abi::VT_BYREF)) return;
    const abi::VARIANT reference = std::exchange(left, {});
    abi::VariantCopyInd(&left, &reference);
}

}  // namespace detail

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

Boolean crossing<Boolean>::from_late(const Variant& value) {
    if (value.kind() == Kind::boolean) return Boolean::of(value.get()->boolVal);
    return value.to<bool>();
}

Variant crossing<Boolean>::to_late(Boolean value) {
    abi::VARIANT raw{};
    raw.vt = abi::VT_BOOL;
    raw.boolVal = value.number;
    return Variant::attach(raw);
}

Variant* crossing<Variant>::in_place(abi::VARIANT& passed) {
    constexpr auto by_reference = abi::VT_BYREF | abi::VT_VARIANT;
    if (passed.vt != by_reference || passed.pvarVal->vt & abi::VT_BYREF) return nullptr;
    return detail::in_place(*passed.pvarVal);
}

Object crossing<Object>::from_late(const Variant& value) {
    if (!value.is_object()) raise_runtime_error(runtime_error::type_mismatch);
    return value.to<Object>();
}

bool crossing<Secret>::holds(raw value, const Secret& secret) {
    return secret.reveal([&](TextView text) { return crossing<Text>::view(value) == text; });
}

Secret crossing<Secret>::take(raw& value) {
    Secret secret = copy(value);
    drop(std::exchange(value, nullptr));
    return secret;
}

abi::BSTR crossing<Secret>::give(const Secret& value) {
    return value.reveal([](TextView text) {
        return abi::SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()));
    });
}

void crossing<Secret>::drop(raw value) {
    if (value) overwrite(value, abi::SysStringByteLen(value));
    abi::SysFreeString(value);
}

Variant crossing<Secret>::to_late(const Secret& value) {
    return value.reveal([](TextView text) { return Variant(text); });
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
