#pragma once

// Values as the component's methods take and give them.

#include <algorithm>
#include <chrono>
#include <compare>
#include <concepts>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "orvo/text.h"

namespace orvo {
inline namespace client {

// Money: a whole number of ten-thousandths.
struct Currency {
    std::int64_t ten_thousandths = 0;

    constexpr Currency() = default;
    explicit constexpr Currency(std::int64_t count) : ten_thousandths(count) {}
    // Raises std::out_of_range for more than 64 bits hold, and for what is no number.
    static Currency of(double amount) {
        const double count = amount * 10000 + (amount < 0 ? -0.5 : 0.5);
        if (!(count >= -0x1p63 && count < 0x1p63))
            throw std::out_of_range("the amount is too large for a currency");
        return Currency(static_cast<std::int64_t>(count));
    }
    explicit constexpr operator double() const {
        return static_cast<double>(ten_thousandths) / 10000;
    }
    auto operator<=>(const Currency&) const = default;
};

// A date and a time of day, without a zone.
struct Date {
    using Time = std::chrono::local_time<std::chrono::milliseconds>;
    double days = 0;  // since 1899-12-30; of a day before it the fraction counts forward, too

    constexpr Date() = default;
    explicit constexpr Date(double since) : days(since) {}
    Date(Time time) {
        const auto since = time.time_since_epoch();
        const auto day = std::chrono::floor<std::chrono::days>(since);
        const double fraction = static_cast<double>((since - day).count()) / (24 * 60 * 60 * 1000);
        const double whole = static_cast<double>(day.count()) + day_of_1970;
        days = whole < 0 ? whole - fraction : whole + fraction;
    }
    Time time() const {
        const auto whole = static_cast<std::int64_t>(days);
        const double fraction =
            days < 0 ? static_cast<double>(whole) - days : days - static_cast<double>(whole);
        return Time(std::chrono::days(whole - day_of_1970) +
                    std::chrono::milliseconds(
                        static_cast<std::int64_t>(fraction * 24 * 60 * 60 * 1000 + 0.5)));
    }
    auto operator<=>(const Date&) const = default;

private:
    static constexpr int day_of_1970 = 25569;
};

class Object;

// A value of any kind that Automation knows: nothing, null, number, text, date, object, array.
class Value {
public:
    Value() { abi::VariantInit(&raw_); }
    ~Value() { abi::VariantClear(&raw_); }
    Value(const Value& other) : Value() { detail::check(abi::VariantCopy(&raw_, &other.raw_)); }
    Value(Value&& other) noexcept : Value() { std::swap(raw_, other.raw_); }
    Value& operator=(Value other) noexcept {
        std::swap(raw_, other.raw_);
        return *this;
    }

    Value(std::same_as<bool> auto value) : Value() {
        raw_.vt = abi::VT_BOOL;
        raw_.boolVal = value ? abi::variant_true : abi::variant_false;
    }
    Value(std::int16_t value) : Value() {
        raw_.vt = abi::VT_I2;
        raw_.iVal = value;
    }
    Value(std::int32_t value) : Value() {
        raw_.vt = abi::VT_I4;
        raw_.lVal = value;
    }
    Value(std::int64_t value) : Value() {
        raw_.vt = abi::VT_I8;
        raw_.llVal = value;
    }
    Value(double value) : Value() {
        raw_.vt = abi::VT_R8;
        raw_.dblVal = value;
    }
    Value(Currency value) : Value() {
        raw_.vt = abi::VT_CY;
        raw_.cyVal.int64 = value.ten_thousandths;
    }
    Value(Date value) : Value() {
        raw_.vt = abi::VT_DATE;
        raw_.date = value.days;
    }
    template <class T>
    requires std::constructible_from<Text, const T&> Value(const T& text) : Value() {
        detail::Bstr made(Text(text).utf16());
        raw_.vt = abi::VT_BSTR;
        raw_.bstrVal = made.release();
    }
    inline Value(const Object& object);
    // Empty for none.
    template <class T>
    requires std::constructible_from<Value, const T&> Value(const std::optional<T>& value)
        : Value() {
        if (value) *this = Value(*value);
    }
    // An array of variants.
    template <class T>
    requires std::constructible_from<Value, const T&> Value(const std::vector<T>& elements)
        : Value() {
        abi::SAFEARRAY* array = abi::SafeArrayCreateVector(
            abi::VT_VARIANT, 0, static_cast<std::uint32_t>(elements.size()));
        if (!array) throw std::bad_alloc();
        raw_.vt = abi::VT_ARRAY | abi::VT_VARIANT;
        raw_.parray = array;
        auto* to = static_cast<abi::VARIANT*>(array->pvData);
        for (std::size_t i = 0; i < elements.size(); ++i) to[i] = Value(elements[i]).release();
    }
    // An array of bytes.
    Value(const std::vector<std::uint8_t>& bytes) : Value() {
        abi::SAFEARRAY* array =
            abi::SafeArrayCreateVector(abi::VT_UI1, 0, static_cast<std::uint32_t>(bytes.size()));
        if (!array) throw std::bad_alloc();
        raw_.vt = abi::VT_ARRAY | abi::VT_UI1;
        raw_.parray = array;
        std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(array->pvData));
    }

    static Value null() {
        Value value;
        value.raw_.vt = abi::VT_NULL;
        return value;
    }
    // An argument that is left out.
    static Value missing() {
        Value value;
        value.raw_.vt = abi::VT_ERROR;
        value.raw_.scode = abi::disp_e_paramnotfound;
        return value;
    }
    // Takes the value over.
    static Value attach(abi::VARIANT raw) noexcept {
        Value value;
        value.raw_ = raw;
        return value;
    }

    bool is_empty() const { return raw_.vt == abi::VT_EMPTY; }
    bool is_null() const { return raw_.vt == abi::VT_NULL; }
    bool is_array() const { return (raw_.vt & abi::VT_ARRAY) != 0; }

    // As the other type, by Automation's rules and US English's, whatever the user's language is.
    // Empty and null are the empty text, and no std::optional. T: std::string, std::u16string,
    // bool, integers, double, Currency, Date, Object, std::vector of these (of one value: an array
    // of one; of empty: an array of none), std::vector<std::uint8_t> for bytes, std::optional of
    // all.
    template <class T>
    T to() const;

    // Lent, or handed over.
    const abi::VARIANT* get() const { return &raw_; }
    abi::VARIANT* put() { return &raw_; }
    abi::VARIANT release() noexcept {
        const abi::VARIANT raw = raw_;
        abi::VariantInit(&raw_);
        return raw;
    }

private:
    Value converted(abi::VARTYPE type) const {
        Value result;
        const abi::HRESULT code =
            abi::VariantChangeTypeEx(&result.raw_, &raw_, abi::fixed_locale, 0, type);
        if (abi::failed(code)) throw Error(code, {}, detail::description_of(code));
        return result;
    }
    template <class T>
    std::vector<T> elements() const;

    abi::VARIANT raw_;
};

template <class T>
std::vector<T> Value::elements() const {
    std::vector<T> all;
    if (is_empty() || is_null()) return all;
    if (!is_array()) {
        all.push_back(to<T>());
        return all;
    }
    const auto type = static_cast<abi::VARTYPE>(raw_.vt & ~(abi::VT_ARRAY | abi::VT_BYREF));
    abi::SAFEARRAY* array = raw_.vt & abi::VT_BYREF ? *raw_.pparray : raw_.parray;
    if (!array) return all;
    if (abi::SafeArrayGetDim(array) != 1)
        throw Error(abi::disp_e_typemismatch, {}, "an array of several dimensions is no list");
    std::int32_t lower = 0, upper = -1;
    detail::check(abi::SafeArrayGetLBound(array, 1, &lower));
    detail::check(abi::SafeArrayGetUBound(array, 1, &upper));
    if constexpr (std::same_as<T, std::uint8_t>) {
        if (type == abi::VT_UI1) {
            const auto* bytes = static_cast<const std::uint8_t*>(array->pvData);
            return {bytes, bytes + (std::int64_t{upper} - lower + 1)};
        }
    }
    for (std::int32_t i = lower; i <= upper; ++i) {
        Value element;
        // An element that is no variant lies behind the variant's type.
        if (type != abi::VT_VARIANT) element.raw_.vt = type;
        detail::check(abi::SafeArrayGetElement(
            array, &i,
            type == abi::VT_VARIANT ? static_cast<void*>(&element.raw_) : &element.raw_.llVal));
        all.push_back(element.to<T>());
    }
    return all;
}

namespace detail {

template <class T>
struct Target {
    static constexpr bool is_optional = false, is_list = false;
};
template <class T>
struct Target<std::optional<T>> {
    static constexpr bool is_optional = true, is_list = false;
    using element = T;
};
template <class T>
struct Target<std::vector<T>> {
    static constexpr bool is_optional = false, is_list = true;
    using element = T;
};

}  // namespace detail

template <class T>
T Value::to() const {
    using Target = detail::Target<T>;
    if constexpr (std::same_as<T, Value>) {
        return *this;
    } else if constexpr (Target::is_optional) {
        if (is_empty() || is_null()) return std::nullopt;
        return to<typename Target::element>();
    } else if constexpr (Target::is_list) {
        return elements<typename Target::element>();
    } else if constexpr (std::same_as<T, std::u16string>) {
        if (is_empty() || is_null()) return {};
        const Value text = converted(abi::VT_BSTR);
        return {text.raw_.bstrVal, abi::SysStringLen(text.raw_.bstrVal)};
    } else if constexpr (std::same_as<T, std::string>) {
        return to_utf8(to<std::u16string>());
    } else if constexpr (std::same_as<T, bool>) {
        return converted(abi::VT_BOOL).raw_.boolVal != abi::variant_false;
    } else if constexpr (std::same_as<T, std::uint8_t>) {
        return converted(abi::VT_UI1).raw_.bVal;
    } else if constexpr (std::same_as<T, std::int16_t>) {
        return converted(abi::VT_I2).raw_.iVal;
    } else if constexpr (std::same_as<T, std::int32_t>) {
        return converted(abi::VT_I4).raw_.lVal;
    } else if constexpr (std::same_as<T, std::int64_t>) {
        return converted(abi::VT_I8).raw_.llVal;
    } else if constexpr (std::same_as<T, double>) {
        return converted(abi::VT_R8).raw_.dblVal;
    } else if constexpr (std::same_as<T, Currency>) {
        return Currency(converted(abi::VT_CY).raw_.cyVal.int64);
    } else if constexpr (std::same_as<T, Date>) {
        return Date(converted(abi::VT_DATE).raw_.date);
    } else {
        static_assert(std::same_as<T, Object>, "a value is nothing of that type");
        if (is_empty() || is_null()) return {};
        Value object = converted(abi::VT_DISPATCH);
        return T::attach(object.release().pdispVal);
    }
}

inline std::ostream& operator<<(std::ostream& out, const Value& value) {
    return out << value.to<std::string>();
}

}  // namespace client
}  // namespace orvo
