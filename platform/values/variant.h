#pragma once

// A tagged Automation value, as an owning C++ value.
//
// One value is used by one thread at a time, and one that holds an object by the object's thread.
// Failures are raised as Failure; an assignment that fails leaves the value as it was.

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/values/currency.h"
#include "platform/values/date.h"
#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

namespace abi {
struct VARIANT;
}
class Secret;
class Values;

// The tag of a value. Only what the house deals in has a name; others pass through untouched.
enum class Kind : std::uint16_t {
    empty = 0,
    null = 1,
    int16 = 2,
    int32 = 3,
    single = 4,
    real = 5,
    currency = 6,
    date = 7,
    text = 8,
    object = 9,
    error = 10,
    boolean = 11,
    unknown = 13,
    decimal = 14,
    byte = 17,
    int64 = 20,
};

// One value of any type: empty, null, missing, text, number, date, object or array. Regular: copies
// are deep (arrays too), objects are shared. Never holds a by-reference value.
class Variant {
public:
    Variant() noexcept;
    Variant(const Variant& other);
    Variant(Variant&& other) noexcept;
    Variant& operator=(const Variant& other);
    Variant& operator=(Variant&& other) noexcept;
    ~Variant();

    Variant(std::int16_t value);
    Variant(std::int32_t value);
    Variant(std::int64_t value);
    Variant(double value);
    Variant(Currency value);
    Variant(Date value);
    Variant(TextView value);
    Variant(const Text& value) : Variant(TextView(value)) {}
    Variant(const char16_t* value) : Variant(TextView(value)) {}
    // Held as IDispatch; an object that does not speak it is held as what it is (Kind::unknown).
    Variant(const Object& value);
    Variant(const Values& value);
    Variant(Values&& value);
    // A boolean is a type of its own here; nothing else (no pointer, no integer) becomes one.
    template <std::same_as<bool> T>
    Variant(T value) : Variant(boolean_tag{}, value) {}
    template <std::same_as<char> T>
    Variant(T) = delete;
    Variant(std::nullptr_t) = delete;

    static Variant null();
    // What stands in for an optional argument that the caller left out.
    static Variant missing();
    // An array of bytes (unsigned, lower bound 0).
    static Variant bytes(std::string_view content);

    Kind kind() const;
    bool is_empty() const { return kind() == Kind::empty; }
    bool is_null() const { return kind() == Kind::null; }
    bool is_text() const { return kind() == Kind::text; }
    bool is_object() const { return kind() == Kind::object || kind() == Kind::unknown; }
    bool is_missing() const;
    // An array of any element type and number of dimensions.
    bool is_array() const;
    // The content of an array of bytes; nothing for anything else.
    std::optional<std::string> try_bytes() const;

    // The text held, without a copy; the empty view when this is not a text.
    TextView text_view() const;

    // Overwrites the text, or those of a list of values, and becomes empty: for what held a
    // password.
    void wipe();

    // Conversion by the Automation rules, independent of locale. Raises 13 (type mismatch),
    // 6 (overflow), 94 (invalid use of null). An object is asked for its default value first; the
    // empty object has none and raises 91 (object variable not set).
    // T: Text, Secret, bool, std::int16_t, std::int32_t, std::int64_t, double, Currency, Date,
    // Object, Values. `to<Values>` takes one-dimensional arrays of any element type, anything else
    // is a type mismatch (13). `to<Object>` takes objects, the empty one too; anything else raises
    // 424 (object required).
    template <class T>
    T to() const;

    // Equality as the tag and the content (1 as a 16-bit integer is not 1 as a 32-bit one); arrays
    // by bounds and elements, objects by identity. For comparison as a script does it see
    // `equals_number`.
    bool operator==(const Variant& other) const;

    // The border's own verbs; see Object. `attach` and `copy_of` follow a by-reference value to
    // what it refers to; `attach` leaves `taken` empty, `detach` writes over whatever `out` holds.
    // lend: the value where it stands, for a callee that may change it.
    const abi::VARIANT* get() const;
    abi::VARIANT* lend() { return &raw(); }
    abi::VARIANT* put();
    static Variant attach(abi::VARIANT& taken);
    static Variant copy_of(const abi::VARIANT& value);
    void detach(abi::VARIANT& out);

private:
    struct boolean_tag {};
    Variant(boolean_tag, bool value);
    abi::VARIANT& raw();
    const abi::VARIANT& raw() const;

    // The system's own structure, kept as storage so that no header above platform/ sees it.
    alignas(8) std::byte storage_[24];
};

template <>
Text Variant::to<Text>() const;
template <>
Secret Variant::to<Secret>() const;
template <>
bool Variant::to<bool>() const;
template <>
std::int16_t Variant::to<std::int16_t>() const;
template <>
std::int32_t Variant::to<std::int32_t>() const;
template <>
std::int64_t Variant::to<std::int64_t>() const;
template <>
double Variant::to<double>() const;
template <>
Currency Variant::to<Currency>() const;
template <>
Date Variant::to<Date>() const;
template <>
Object Variant::to<Object>() const;
template <>
Values Variant::to<Values>() const;

// Whether a value equals a number as a script compares them: an empty value and an empty text equal
// 0, a text that reads as a number is compared as that number, any other text and null equal no
// number. True is -1, a date its days. Objects and arrays raise 13 (type mismatch).
bool equals_number(const Variant& value, std::int32_t number);

// Element `index` of an array. Raises 13 when the value is no array, 9 when it has no such element.
Variant element(const Variant& array, std::int32_t index);

}  // namespace orvo
