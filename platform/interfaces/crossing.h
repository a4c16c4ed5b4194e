#pragma once

// How each type of value crosses a binary border. Conversion belongs to the type, never to a
// method: a method that would need a thunk of its own is a missing type here.
//
//   raw        the binary form
//   none       the empty binary form
//   take       takes the content over; the binary form is left empty
//   copy       a copy; the binary form keeps its own
//   give       hands the content over in binary form, to be freed by the receiver
//   idl        the type as IDL writes it
//   from_late  converts what a late-bound caller passed, by the Automation rules
//   to_late    what a late-bound caller receives, where a Variant cannot be made from the value
//   drop       frees what `give` made for the length of one call, where that needs freeing

#include <optional>

#include "platform/interfaces/ref.h"
#include "platform/interfaces/table.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"

namespace orvo {

template <class T>
struct crossing;

namespace detail {

template <class T, class Raw>
struct scalar_crossing {
    using raw = Raw;
    static constexpr Raw none{};
    static T take(Raw& value) { return copy(value); }
    static T copy(Raw value) { return static_cast<T>(value); }
    static Raw give(T value) { return static_cast<Raw>(value); }
    static T from_late(const Variant& value) { return value.to<T>(); }
};

}  // namespace detail

template <>
struct crossing<std::int16_t> : detail::scalar_crossing<std::int16_t, std::int16_t> {
    static std::string idl() { return "short"; }
};
template <>
struct crossing<std::int32_t> : detail::scalar_crossing<std::int32_t, std::int32_t> {
    static std::string idl() { return "long"; }
};
template <>
struct crossing<std::int64_t> : detail::scalar_crossing<std::int64_t, std::int64_t> {
    static std::string idl() { return "hyper"; }
};
// One unsigned byte.
template <>
struct crossing<std::uint8_t> : detail::scalar_crossing<std::uint8_t, std::uint8_t> {
    static std::uint8_t from_late(const Variant& value);
    static Variant to_late(std::uint8_t value);
    static std::string idl() { return "unsigned char"; }
};
template <>
struct crossing<double> : detail::scalar_crossing<double, double> {
    static std::string idl() { return "double"; }
};
template <>
struct crossing<bool> : detail::scalar_crossing<bool, abi::VARIANT_BOOL> {
    static bool copy(abi::VARIANT_BOOL value) { return value != 0; }
    static bool take(abi::VARIANT_BOOL& value) { return value != 0; }
    static abi::VARIANT_BOOL give(bool value) {
        return value ? abi::variant_true : abi::variant_false;
    }
    static std::string idl() { return "VARIANT_BOOL"; }
};
template <>
struct crossing<Currency> {
    using raw = abi::CY;
    static constexpr raw none{};
    static Currency take(raw& value) { return {value.int64}; }
    static Currency copy(raw value) { return {value.int64}; }
    static raw give(Currency value) { return {value.units}; }
    static Currency from_late(const Variant& value) { return value.to<Currency>(); }
    static std::string idl() { return "CURRENCY"; }
};
template <>
struct crossing<Date> {
    using raw = abi::DATE;
    static constexpr raw none{};
    static Date take(raw& value) { return {value}; }
    static Date copy(raw value) { return {value}; }
    static raw give(Date value) { return value.days; }
    static Date from_late(const Variant& value) { return value.to<Date>(); }
    static std::string idl() { return "DATE"; }
};

template <>
struct crossing<Text> {
    using raw = abi::BSTR;
    static constexpr raw none = nullptr;
    static TextView view(raw value) { return {value, abi::SysStringLen(value)}; }
    static Text copy(raw value) { return Text(view(value)); }
    static Text take(raw& value) {
        Text text = copy(value);
        abi::SysFreeString(value);
        value = nullptr;
        return text;
    }
    static raw give(const Text& value) {
        return abi::SysAllocStringLen(value.data(), static_cast<std::uint32_t>(value.size()));
    }
    static void drop(raw value) { abi::SysFreeString(value); }
    static Text from_late(const Variant& value) { return value.to<Text>(); }
    static std::string idl() { return "BSTR"; }
};

// A text that may be left out: by slot a null pointer, which is not the empty text here.
template <>
struct crossing<std::optional<Text>> {
    using raw = abi::BSTR;
    static constexpr raw none = nullptr;
    static std::optional<Text> copy(raw value) {
        if (value == nullptr) return {};
        return crossing<Text>::copy(value);
    }
    static raw give(const std::optional<Text>& value) {
        return value ? crossing<Text>::give(*value) : nullptr;
    }
    static void drop(raw value) { abi::SysFreeString(value); }
    static std::optional<Text> from_late(const Variant& value) { return value.to<Text>(); }
    static std::string idl() { return "BSTR"; }
};

template <>
struct crossing<Variant> {
    using raw = abi::VARIANT;
    static constexpr raw none{};
    static Variant copy(const raw& value) { return Variant::copy_of(value); }
    static Variant take(raw& value) { return Variant::attach(value); }
    static raw give(Variant&& value) {
        raw out{};
        value.detach(out);
        return out;
    }
    static std::string idl() { return "VARIANT"; }
};

template <>
struct crossing<Values> {
    using raw = abi::SAFEARRAY*;
    static constexpr raw none = nullptr;
    static Values copy(raw value);
    static Values take(raw& value);
    static raw give(Values&& value) { return value.detach(); }
    static Values from_late(const Variant& value) { return value.to<Values>(); }
    static std::string idl() { return "SAFEARRAY(VARIANT)"; }
};

template <>
struct crossing<Object> {
    using raw = abi::IUnknown*;
    static constexpr raw none = nullptr;
    static Object copy(raw value) { return Object::share(value); }
    static Object take(raw& value) { return Object::attach(std::exchange(value, nullptr)); }
    static raw give(Object&& value) { return value.detach(); }
    static Object from_late(const Variant& value) { return value.to<Object>(); }
    static std::string idl() { return "IDispatch*"; }
};

template <class I>
struct crossing<Ref<I>> {
    using raw = abi::IUnknown*;
    static constexpr raw none = nullptr;
    static Ref<I> copy(raw value) { return Ref<I>::share(value); }
    static Ref<I> take(raw& value) { return Ref<I>::attach(std::exchange(value, nullptr)); }
    static raw give(Ref<I>&& value) { return value.detach(); }
    static Ref<I> from_late(const Variant& value) { return Ref<I>::from(value.to<Object>()); }
    static std::string idl() { return std::string(table_of<I>.name) + "*"; }
};

namespace detail {

// Whether every value of the type is an object or nothing.
template <class T>
inline constexpr bool is_object_type = std::is_same_v<T, Object>;
template <class I>
inline constexpr bool is_object_type<Ref<I>> = true;

template <class P>
using natural = std::remove_cvref_t<P>;
template <class P>
inline constexpr bool is_in_out =
    std::is_lvalue_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>;

template <class P>
using raw_argument = std::conditional_t<is_in_out<P>, typename crossing<natural<P>>::raw*,
                                        typename crossing<natural<P>>::raw>;

// Passes a held value on as the method takes it.
template <class P, class T>
decltype(auto) pass(T& value) {
    if constexpr (std::is_reference_v<P>)
        return static_cast<P>(value);
    else
        return std::move(value);
}

// Turns a result that a method returned into what a late-bound caller receives.
template <class R>
Variant to_late(R&& value) {
    using T = natural<R>;
    if constexpr (std::is_same_v<T, Variant>)
        return std::forward<R>(value);
    else if constexpr (requires { crossing<T>::to_late(value); })
        return crossing<T>::to_late(value);
    else if constexpr (requires { value.object(); })
        return Variant(value.object());
    else
        return Variant(std::forward<R>(value));
}

}  // namespace detail
}  // namespace orvo
