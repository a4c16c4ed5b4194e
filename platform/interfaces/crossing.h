#pragma once

// How each type of value crosses a binary border. Conversion belongs to the type, never to a
// method: a method that would need a thunk of its own is a missing type here.
//
// A type's `crossing` has these members; most of them come from detail::crossing_base:
//
//   raw             the binary form; `none` is the empty one
//   take            takes the content over; the binary form is left empty
//   copy            a copy; the binary form keeps its own
//   give            hands the content over in binary form, to be freed by the receiver
//   lend, drop      the binary form for the length of one call, and what frees it afterwards
//   slot            holds an in-out argument of a caller's while a method of ours runs
//   variable        holds a variable of ours while somebody else's method may change it
//   left_out        what a method receives for an argument that its caller left out
//   from_late       converts what a late-bound caller passed, by the Automation rules
//   in_place        the value itself in what a late-bound caller passed, where it stands there
//   discard         gets a variant that a late-bound call made or replaced, and nobody needs
//   forget          gets the value that a late-bound call was made with, when it has ended
//   remembered, is_unchanged   tell whether a late-bound caller's variable is to be written back
//   to_late         what a late-bound caller receives
//   answers_object  whether every value is an object or nothing
//   idl             the type as IDL writes it
//
// All of it happens on the thread of the call. `from_late`, `take` and `copy` raise Failure for
// what cannot be converted; nothing has changed its owner then.

#include <optional>

#include "platform/interfaces/ref.h"
#include "platform/interfaces/table.h"
#include "platform/system/vartypes.h"
#include "platform/values/boolean.h"
#include "platform/values/secret.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"

namespace orvo {

template <class T>
struct crossing;

namespace detail {

// Takes the caller's content over, and puts it back when the call ends, failed or not.
template <class T>
class taken_slot {
    using C = crossing<T>;

public:
    explicit taken_slot(typename C::raw& slot) : slot_(slot), value_(C::take(slot)) {}
    ~taken_slot() { slot_ = C::give(std::move(value_)); }
    taken_slot(const taken_slot&) = delete;
    taken_slot& operator=(const taken_slot&) = delete;

    T& value() { return value_; }

private:
    typename C::raw& slot_;
    T value_;
};

// Hands the content over and takes back what the callee left.
template <class T>
class given_variable {
    using C = crossing<T>;

public:
    explicit given_variable(T& value) : value_(value), raw_(C::give(std::move(value))) {}
    ~given_variable() { value_ = C::take(raw_); }
    given_variable(const given_variable&) = delete;
    given_variable& operator=(const given_variable&) = delete;

    typename C::raw* pass() { return &raw_; }

private:
    T& value_;
    typename C::raw raw_;
};

// Strings: T is Text or Secret. A caller may pass one variable for two arguments: a string is
// written back only when it changed, and not into a slot that was written as another argument's
// meanwhile.
template <class T>
class string_slot {
    using C = crossing<T>;

public:
    explicit string_slot(abi::BSTR& slot) : slot_(slot), before_(slot), value_(C::copy(slot)) {}
    ~string_slot() {
        if (slot_ != before_ || C::holds(slot_, value_)) return;
        slot_ = C::give(value_);
        C::drop(before_);
    }
    string_slot(const string_slot&) = delete;
    string_slot& operator=(const string_slot&) = delete;

    T& value() { return value_; }

private:
    abi::BSTR& slot_;
    const abi::BSTR before_;
    T value_;
};

template <class T>
class string_variable {
    using C = crossing<T>;

public:
    explicit string_variable(T& value) : value_(value), raw_(C::give(value)) {}
    ~string_variable() {
        if (!C::holds(raw_, value_)) value_ = C::copy(raw_);
        C::drop(raw_);
    }
    string_variable(const string_variable&) = delete;
    string_variable& operator=(const string_variable&) = delete;

    abi::BSTR* pass() { return &raw_; }

private:
    T& value_;
    abi::BSTR raw_;
};

// Used where it stands, so that one variable may be passed for two arguments; only what a
// by-reference value refers to is copied, written back when it changed, and overwritten: it may be
// a password.
class variant_slot {
public:
    explicit variant_slot(abi::VARIANT& slot);
    ~variant_slot();
    variant_slot(const variant_slot&) = delete;
    variant_slot& operator=(const variant_slot&) = delete;

    Variant& value() { return *seen_; }

private:
    abi::VARIANT& slot_;
    Variant copied_;
    Variant before_;
    Variant* seen_;
};

// Lent where it stands. A callee has no business leaving a by-reference value: what that refers to
// is taken.
class variant_variable {
public:
    explicit variant_variable(Variant& value) : value_(value) {}
    ~variant_variable();
    variant_variable(const variant_variable&) = delete;
    variant_variable& operator=(const variant_variable&) = delete;

    abi::VARIANT* pass() { return value_.lend(); }

private:
    Variant& value_;
};

// What most types have in common. `type`: the type that the binary form has in a variant.
template <class T, class Raw, abi::VARTYPE type>
struct crossing_base {
    using raw = Raw;
    using slot = taken_slot<T>;
    using variable = given_variable<T>;
    static constexpr raw none{};
    static constexpr bool answers_object = false;

    static raw lend(const T& value) { return crossing<T>::give(value); }
    static void drop(raw) {}
    static T left_out(int) { return T{}; }
    static T from_late(const Variant& value) { return value.to<T>(); }
    static T* in_place(abi::VARIANT&) { return nullptr; }
    static T remembered(const T& value) { return value; }
    static bool is_unchanged(const T& value, const T& before) { return value == before; }
    static void discard(Variant) {}
    static void forget(T&) {}
    static Variant to_late(T value) { return Variant(std::move(value)); }
    static std::string idl() { return abi::row_of(type).idl; }
};

template <class T, class Raw, abi::VARTYPE type>
struct number_crossing : crossing_base<T, Raw, type> {
    static T take(Raw& value) { return static_cast<T>(value); }
    static T copy(Raw value) { return static_cast<T>(value); }
    static Raw give(T value) { return static_cast<Raw>(value); }
    static T left_out(int otherwise) { return static_cast<T>(otherwise); }
};

// A counted reference: R is Object or a Ref.
template <class R>
struct reference_crossing : crossing_base<R, abi::IUnknown*, abi::VT_DISPATCH> {
    static constexpr bool answers_object = true;
    static R copy(abi::IUnknown* value) { return R::share(value); }
    static R take(abi::IUnknown*& value) { return R::attach(std::exchange(value, nullptr)); }
    static abi::IUnknown* give(R value) { return value.detach(); }
    static abi::IUnknown* lend(const R& value) { return value.get(); }
};

}  // namespace detail

template <>
struct crossing<std::int16_t> : detail::number_crossing<std::int16_t, std::int16_t, abi::VT_I2> {};
template <>
struct crossing<std::int32_t> : detail::number_crossing<std::int32_t, std::int32_t, abi::VT_I4> {};
template <>
struct crossing<std::int64_t> : detail::number_crossing<std::int64_t, std::int64_t, abi::VT_I8> {};
template <>
struct crossing<double> : detail::number_crossing<double, double, abi::VT_R8> {};
// One unsigned byte.
template <>
struct crossing<std::uint8_t> : detail::number_crossing<std::uint8_t, std::uint8_t, abi::VT_UI1> {
    static std::uint8_t from_late(const Variant& value);
    static Variant to_late(std::uint8_t value);
};
template <>
struct crossing<bool> : detail::number_crossing<bool, abi::VARIANT_BOOL, abi::VT_BOOL> {
    static abi::VARIANT_BOOL give(bool value) {
        return value ? abi::variant_true : abi::variant_false;
    }
};
template <>
struct crossing<Boolean> : detail::crossing_base<Boolean, abi::VARIANT_BOOL, abi::VT_BOOL> {
    static Boolean take(raw& value) { return Boolean::of(value); }
    static Boolean copy(raw value) { return Boolean::of(value); }
    static raw give(Boolean value) { return value.number; }
    static Boolean from_late(const Variant& value);
    static Variant to_late(Boolean value);
};
template <>
struct crossing<Currency> : detail::crossing_base<Currency, abi::CY, abi::VT_CY> {
    static Currency take(raw& value) { return {value.int64}; }
    static Currency copy(raw value) { return {value.int64}; }
    static raw give(Currency value) { return {value.units}; }
};
template <>
struct crossing<Date> : detail::crossing_base<Date, abi::DATE, abi::VT_DATE> {
    static Date take(raw& value) { return {value}; }
    static Date copy(raw value) { return {value}; }
    static raw give(Date value) { return value.days; }
};

template <>
struct crossing<Text> : detail::crossing_base<Text, abi::BSTR, abi::VT_BSTR> {
    using slot = detail::string_slot<Text>;
    using variable = detail::string_variable<Text>;
    static TextView view(raw value) { return {value, abi::SysStringLen(value)}; }
    static bool holds(raw value, const Text& text) { return view(value) == text; }
    static Text copy(raw value) { return Text(view(value)); }
    static Text take(raw& value) {
        Text text = copy(value);
        abi::SysFreeString(std::exchange(value, nullptr));
        return text;
    }
    static raw give(const Text& value) {
        return abi::SysAllocStringLen(value.data(), static_cast<std::uint32_t>(value.size()));
    }
    static void drop(raw value) { abi::SysFreeString(value); }
};

// A password crosses as a text does, unit by unit. Copies of it that are made on the way are
// overwritten before they are freed; what others own stays as it is.
template <>
struct crossing<Secret> : detail::crossing_base<Secret, abi::BSTR, abi::VT_BSTR> {
    using slot = detail::string_slot<Secret>;
    using variable = detail::string_variable<Secret>;
    static bool holds(raw value, const Secret& secret);
    static Secret copy(raw value) { return Secret(crossing<Text>::view(value)); }
    static Secret take(raw& value);
    static raw give(const Secret& value);
    static void drop(raw value);
    static Secret remembered(const Secret& value) { return value.clone(); }
    static bool is_unchanged(const Secret& value, const Secret& before) {
        return value.is_same_as(before);
    }
    static void discard(Variant unneeded) { unneeded.wipe(); }
    static Variant to_late(const Secret& value);
};

// A text that may be left out: by slot a null pointer, which is not the empty text here.
template <>
struct crossing<std::optional<Text>>
    : detail::crossing_base<std::optional<Text>, abi::BSTR, abi::VT_BSTR> {
    static std::optional<Text> copy(raw value) {
        if (value == nullptr) return {};
        return crossing<Text>::copy(value);
    }
    static raw give(const std::optional<Text>& value) {
        return value ? crossing<Text>::give(*value) : nullptr;
    }
    static void drop(raw value) { abi::SysFreeString(value); }
    static std::optional<Text> from_late(const Variant& value) { return value.to<Text>(); }
};

// A variant may hold a password, too, as a check of one takes it: copies are overwritten.
template <>
struct crossing<Variant> : detail::crossing_base<Variant, abi::VARIANT, abi::VT_VARIANT> {
    using slot = detail::variant_slot;
    using variable = detail::variant_variable;
    static Variant copy(const raw& value) { return Variant::copy_of(value); }
    static Variant take(raw& value) { return Variant::attach(value); }
    static raw give(Variant value) {
        raw out{};
        value.detach(out);
        return out;
    }
    static raw lend(const Variant& value) { return *value.get(); }
    static Variant left_out(int) { return Variant::missing(); }
    static Variant from_late(const Variant& value) { return value; }
    static Variant* in_place(abi::VARIANT& passed);
    static void discard(Variant unneeded) { unneeded.wipe(); }
    static void forget(Variant& copy) { copy.wipe(); }
    static Variant to_late(Variant value) { return value; }
};

// The answer of a member that each implementation declares with a type of its own, and that no
// caller uses. The caller lends a cleared variant, in which an answer of any type has room, and
// clears it after the call. An answer that is a variant is freed by that. Any other is at most
// eight bytes long: it covers the tag, but not the value behind it, which stays zero, so that there
// is nothing to free whatever the tag has become.
struct UnusedAnswer {};
template <>
struct crossing<UnusedAnswer> {
    using raw = abi::VARIANT;
    static constexpr raw none{};
    static UnusedAnswer take(raw& value) {
        abi::VariantClear(&value);
        return {};
    }
};

template <>
struct crossing<Values> : detail::crossing_base<Values, abi::SAFEARRAY*, abi::VT_VARIANT> {
    static Values copy(raw value);
    static Values take(raw& value);
    static raw give(Values value) { return value.detach(); }
    static raw lend(const Values& value) { return value.get(); }
    static std::string idl() { return "SAFEARRAY(VARIANT)"; }
};

template <>
struct crossing<Object> : detail::reference_crossing<Object> {
    // Raises 13 for what is no object.
    static Object from_late(const Variant& value);
};

template <class I>
struct crossing<Ref<I>> : detail::reference_crossing<Ref<I>> {
    static Ref<I> from_late(const Variant& value) {
        return Ref<I>::from(crossing<Object>::from_late(value));
    }
    static Variant to_late(const Ref<I>& value) { return Variant(value.object()); }
    static std::string idl() { return std::string(table_of<I>.name) + "*"; }
};

namespace detail {

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
Variant to_late(R&& result) {
    return crossing<natural<R>>::to_late(std::forward<R>(result));
}

}  // namespace detail
}  // namespace orvo
