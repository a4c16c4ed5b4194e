#pragma once

// Objects, called by slot or late bound. An object belongs to the thread that made it. Every call
// that fails raises orvo::Error.

#include <stdexcept>
#include <type_traits>
#include <utility>

#include "orvo/value.h"

namespace orvo {
inline namespace client {

// A whole number or a truth value as an argument: neither a text nor a fraction becomes one by the
// way. Raises std::out_of_range for a number that T does not hold.
template <std::integral T>
class In {
public:
    In() = default;
    template <class U>
    requires(std::integral<U> || std::is_enum_v<U>) && std::convertible_to<U, T> In(U value)
        : value_(static_cast<T>(value)) {
        if constexpr (!std::same_as<T, bool>)
            if (std::cmp_not_equal(value_, +value))
                throw std::out_of_range("the number is too large for this argument");
    }
    operator T() const { return value_; }

private:
    T value_{};
};

namespace detail {

template <class T>
struct Given {
    using type = T;
};
template <std::integral T>
struct Given<T> {
    using type = In<T>;
};

}  // namespace detail

// An argument that the called method may change: of a value, what it makes of it is dropped; of a
// pointer, it is written back.
template <class T>
class InOut {
public:
    InOut() = default;
    template <class U>
    requires std::convertible_to<const U&, typename detail::Given<T>::type> InOut(const U& value)
        : value_(static_cast<typename detail::Given<T>::type>(value)) {}
    InOut(T* changed) : value_(*changed), target_(changed) {}

    const T& value() const { return value_; }
    T* target() const { return target_; }

private:
    T value_{};
    T* target_ = nullptr;
};
template <>
class InOut<Text> {
public:
    InOut() = default;
    template <class U>
    requires std::convertible_to<const U&, Text> InOut(const U& value) : value_(value) {}
    InOut(std::string* changed) : value_(*changed), target_(changed) {}
    InOut(std::u16string* changed) : value_(*changed), wide_target_(changed) {}

    const Text& value() const { return value_; }
    std::string* target() const { return target_; }
    std::u16string* wide_target() const { return wide_target_; }

private:
    Text value_;
    std::string* target_ = nullptr;
    std::u16string* wide_target_ = nullptr;
};

// A counted reference to an object; none by default.
class Object {
public:
    Object() = default;
    // Makes an object of a class by its ProgID.
    explicit Object(Text progid, const abi::IID& iid = abi::iid_dispatch) {
        abi::CLSID clsid;
        detail::check(abi::CLSIDFromProgID(progid.utf16().c_str(), &clsid));
        void* made = nullptr;
        detail::check(abi::CoCreateInstance(clsid, nullptr, abi::CLSCTX_INPROC_SERVER, iid, &made));
        object_ = static_cast<abi::IUnknown*>(made);
    }
    // Takes the reference over.
    static Object attach(abi::IUnknown* object) noexcept {
        Object result;
        result.object_ = object;
        return result;
    }
    // The same object, by another interface that it has; none stays none.
    Object(const Object& object, const abi::IID& iid) {
        if (object) *this = object.as(iid);
    }
    ~Object() {
        if (object_) abi::release(object_);
    }
    Object(const Object& other) noexcept : object_(other.object_) {
        if (object_) abi::add_ref(object_);
    }
    Object(Object&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Object& operator=(Object other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    // Hands the reference over.
    abi::IUnknown* release() noexcept { return std::exchange(object_, nullptr); }

    explicit operator bool() const { return object_ != nullptr; }
    abi::IUnknown* raw() const { return object_; }
    // Whether both are the same object.
    bool operator==(const Object& other) const { return object_ == other.object_; }

    // The object's other interface. Raises where it has none.
    Object as(const abi::IID& iid) const {
        void* found = nullptr;
        const abi::HRESULT code = abi::query_interface(require(), iid, &found);
        if (abi::failed(code)) throw Error(code, {}, detail::description_of(code));
        return attach(static_cast<abi::IUnknown*>(found));
    }

    // Late binding: a member by its name.
    template <class... A>
    Value call(std::string_view member, const A&... arguments) const {
        return invoke(member, abi::DISPATCH_METHOD | abi::DISPATCH_PROPERTYGET,
                      {Value(arguments)...});
    }
    template <class... A>
    Value get(std::string_view property, const A&... indices) const {
        return invoke(property, abi::DISPATCH_PROPERTYGET, {Value(indices)...});
    }
    void put(std::string_view property, const Value& value) const {
        invoke(property, abi::DISPATCH_PROPERTYPUT, {value});
    }

protected:
    // Calls a member by its slot. Arguments are Text, Value, numbers, or InOut of these.
    template <class R, class... A>
    R slot(std::size_t index, const A&... arguments) const;

private:
    abi::IUnknown* require() const {
        if (!object_) throw Error(abi::result(0x800A005B), {}, "there is no object");
        return object_;
    }
    inline Value invoke(std::string_view member, std::uint16_t flags,
                        std::vector<Value> arguments) const;

    abi::IUnknown* object_ = nullptr;
};

namespace detail {

// How a type crosses a slot: give() makes what the other side gets, free() takes it away, take()
// makes a value of what came back and takes that away.
template <class T>
struct Crossing;

template <class T, class Raw = T>
struct PlainCrossing {
    using raw = Raw;
    static raw give(T value) { return value; }
    static void free(raw&) {}
    static T take(raw& value) { return value; }
};
template <>
struct Crossing<std::int16_t> : PlainCrossing<std::int16_t> {};
template <>
struct Crossing<std::int32_t> : PlainCrossing<std::int32_t> {};
template <class T>
struct Crossing<In<T>> : Crossing<T> {};
template <>
struct Crossing<bool> : PlainCrossing<bool, abi::VARIANT_BOOL> {
    static raw give(bool value) { return value ? abi::variant_true : abi::variant_false; }
    static bool take(raw& value) { return value != abi::variant_false; }
};
template <>
struct Crossing<Currency> : PlainCrossing<Currency, abi::CY> {
    static raw give(Currency value) { return {value.ten_thousandths}; }
    static Currency take(raw& value) { return Currency(value.int64); }
};
template <>
struct Crossing<Date> : PlainCrossing<Date, abi::DATE> {
    static raw give(Date value) { return value.days; }
    static Date take(raw& value) { return Date(value); }
};
template <>
struct Crossing<Text> {
    using raw = abi::BSTR;
    static raw give(const Text& text) { return Bstr(text.utf16()).release(); }
    static void free(raw& text) { abi::SysFreeString(text); }
    static std::string take(raw& text) {
        const Bstr held = Bstr::attach(std::exchange(text, nullptr));
        return to_utf8(held.view());
    }
};
template <>
struct Crossing<std::string> : Crossing<Text> {};
template <>
struct Crossing<Value> {
    using raw = abi::VARIANT;
    static raw give(Value value) { return value.release(); }
    static void free(raw& value) { abi::VariantClear(&value); }
    static Value take(raw& value) { return Value::attach(std::exchange(value, abi::VARIANT{})); }
};
template <std::derived_from<Object> T>
struct Crossing<T> {
    using raw = abi::IUnknown*;
    static raw give(Object object) { return object.release(); }
    static void free(raw& object) {
        if (object) abi::release(object);
    }
    static T take(raw& object) { return T(Object::attach(std::exchange(object, nullptr))); }
};

// An argument for the length of a call.
template <class T>
class Passed {
public:
    explicit Passed(const T& value) : raw_(Crossing<T>::give(value)) {}
    ~Passed() { Crossing<T>::free(raw_); }
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;

    auto pass() { return raw_; }
    void take_back() {}

private:
    typename Crossing<T>::raw raw_;
};
template <class T>
class Passed<InOut<T>> {
public:
    explicit Passed(const InOut<T>& argument)
        : raw_(Crossing<T>::give(argument.value())), argument_(argument) {}
    ~Passed() { Crossing<T>::free(raw_); }
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;

    auto pass() { return &raw_; }
    void take_back() {
        if (argument_.target()) *argument_.target() = Crossing<T>::take(raw_);
        if constexpr (std::same_as<T, Text>)
            if (argument_.wide_target())
                *argument_.wide_target() = Bstr::attach(std::exchange(raw_, nullptr)).view();
    }

private:
    typename Crossing<T>::raw raw_;
    const InOut<T>& argument_;
};

template <class R, class... P>
R call_passed(abi::IUnknown* object, std::size_t index, P&&... passed) {
    if constexpr (std::is_void_v<R>) {
        check(abi::call_slot<abi::HRESULT>(object, index, passed.pass()...));
        (passed.take_back(), ...);
    } else {
        typename Crossing<R>::raw result{};
        check(abi::call_slot<abi::HRESULT>(object, index, passed.pass()..., &result));
        R taken = Crossing<R>::take(result);
        (passed.take_back(), ...);
        return taken;
    }
}

}  // namespace detail

template <class R, class... A>
R Object::slot(std::size_t index, const A&... arguments) const {
    const Object held = *this;
    return detail::call_passed<R>(held.require(), index, detail::Passed<A>(arguments)...);
}

inline Value Object::invoke(std::string_view member, std::uint16_t flags,
                            std::vector<Value> arguments) const {
    const Object held = *this;
    static constexpr abi::IID none{};
    const std::u16string wide = to_utf16(member);
    const char16_t* name = wide.c_str();
    abi::DISPID id = abi::DISPID_UNKNOWN;
    if (abi::failed(abi::call_slot<abi::HRESULT, const abi::IID*, const char16_t**, std::uint32_t,
                                   abi::LCID, abi::DISPID*>(
            held.require(), abi::slot_get_ids_of_names, &none, &name, 1, abi::fixed_locale, &id)))
        throw Error(abi::result(0x800A01B6), {},
                    "the object has no member \"" + std::string(member) + "\"");
    std::vector<abi::VARIANT> raw;  // the last argument first
    for (auto value = arguments.rbegin(); value != arguments.rend(); ++value)
        raw.push_back(*value->get());
    abi::DISPID put_name = abi::DISPID_PROPERTYPUT;
    const bool is_put = flags == abi::DISPATCH_PROPERTYPUT;
    abi::DISPPARAMS parameters{raw.data(), is_put ? &put_name : nullptr,
                               static_cast<std::uint32_t>(raw.size()), is_put ? 1u : 0u};
    Value result;
    abi::EXCEPINFO failure{};
    std::uint32_t bad_argument = 0;
    const abi::HRESULT code =
        abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                       abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            held.object_, abi::slot_invoke, id, &none, abi::fixed_locale, flags, &parameters,
            is_put ? nullptr : result.put(), &failure, &bad_argument);
    const auto source = detail::Bstr::attach(failure.bstrSource);
    const auto description = detail::Bstr::attach(failure.bstrDescription);
    abi::SysFreeString(failure.bstrHelpFile);
    if (code == abi::disp_e_exception)
        throw Error(failure.scode ? failure.scode : abi::result(0x800A0000 | failure.wCode),
                    to_utf8(source.view()), to_utf8(description.view()));
    detail::check(code);
    return result;
}

inline Value::Value(const Object& object) : Value() {
    raw_.vt = abi::VT_DISPATCH;
    raw_.pdispVal = static_cast<abi::IDispatch*>(Object(object).release());
}

}  // namespace client
}  // namespace orvo
