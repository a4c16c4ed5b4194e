#include "platform/system/automation.h"
#include "platform/values/array_view.h"
#include "platform/values/failure.h"
#include "platform/values/secret.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"

namespace orvo {
namespace {

// Whether the system, or the object asked for its default value, said no more than that there is no
// value of this kind to be had.
bool is_refusal(abi::HRESULT result) {
    constexpr std::uint32_t dispatch_facility = 0x80020000u;
    const auto code = static_cast<std::uint32_t>(result);
    return ((code & 0xFFFF0000u) == dispatch_facility && result != abi::disp_e_overflow) ||
           result == abi::e_notimpl || result == abi::e_nointerface;
}

[[noreturn]] void raise_conversion(const abi::VARIANT& from, abi::HRESULT result) {
    if (from.vt == abi::VT_NULL) raise_runtime_error(runtime_error::invalid_use_of_null);
    if (from.vt == abi::VT_DISPATCH && !from.pdispVal) {
        raise_runtime_error(runtime_error::object_not_set);
    }
    const bool is_object = from.vt == abi::VT_DISPATCH || from.vt == abi::VT_UNKNOWN;
    if (is_object && is_refusal(result)) raise_runtime_error(runtime_error::type_mismatch);
    raise_runtime_error(number_of_result(result));
}

Variant converted(const Variant& from, abi::VARTYPE type) {
    constexpr std::uint16_t flags = abi::VARIANT_ALPHABOOL | abi::VARIANT_NOUSEROVERRIDE;
    Variant to;
    const auto result =
        abi::VariantChangeTypeEx(to.put(), from.get(), abi::fixed_locale, flags, type);
    if (abi::failed(result)) raise_conversion(*from.get(), result);
    return to;
}

// One member of the value, read from it directly when it has the type already.
template <auto member>
auto member_of(const Variant& from, abi::VARTYPE type) {
    if (from.get()->vt == type) return from.get()->*member;
    return converted(from, type).get()->*member;
}

}  // namespace

template <>
Text Variant::to<Text>() const {
    if (is_text()) return Text(text_view());
    return Text(converted(*this, abi::VT_BSTR).text_view());
}

template <>
Secret Variant::to<Secret>() const {
    if (is_text()) return Secret(text_view());
    Variant text = converted(*this, abi::VT_BSTR);
    Secret secret(text.text_view());
    text.wipe();
    return secret;
}

template <>
bool Variant::to<bool>() const {
    return member_of<&abi::VARIANT::boolVal>(*this, abi::VT_BOOL) != abi::variant_false;
}

template <>
std::int16_t Variant::to<std::int16_t>() const {
    return member_of<&abi::VARIANT::iVal>(*this, abi::VT_I2);
}

template <>
std::int32_t Variant::to<std::int32_t>() const {
    return member_of<&abi::VARIANT::lVal>(*this, abi::VT_I4);
}

template <>
std::int64_t Variant::to<std::int64_t>() const {
    return member_of<&abi::VARIANT::llVal>(*this, abi::VT_I8);
}

template <>
double Variant::to<double>() const {
    return member_of<&abi::VARIANT::dblVal>(*this, abi::VT_R8);
}

template <>
Currency Variant::to<Currency>() const {
    return Currency{member_of<&abi::VARIANT::cyVal>(*this, abi::VT_CY).int64};
}

template <>
Date Variant::to<Date>() const {
    return Date{member_of<&abi::VARIANT::date>(*this, abi::VT_DATE)};
}

template <>
Object Variant::to<Object>() const {
    if (!is_object()) raise_runtime_error(runtime_error::object_required);
    void* dispatch = nullptr;
    if (kind() == Kind::unknown && raw().punkVal &&
        abi::succeeded(abi::query_interface(raw().punkVal, abi::iid_dispatch, &dispatch))) {
        return Object::attach(static_cast<abi::IUnknown*>(dispatch));
    }
    return Object::share(raw().punkVal);
}

template <>
Values Variant::to<Values>() const {
    const auto view = detail::array_of(raw());
    if (!view.is_vector()) raise_runtime_error(runtime_error::type_mismatch);
    Values values(view.lower_bound(), static_cast<std::int32_t>(view.size()));
    std::size_t position = 0;
    for (Variant& element : values) element = view.at(position++);
    return values;
}

}  // namespace orvo
