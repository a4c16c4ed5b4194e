#pragma once

// Arrays of variants. One array is used by one thread at a time. Failures are raised as Failure.

#include <cstdint>
#include <initializer_list>
#include <span>

#include "platform/values/variant.h"

namespace orvo {

namespace abi {
struct SAFEARRAY;
}

// An array of variants with one dimension and bounds of its own. Elements are kept in the system's
// own array, so handing one over a border copies nothing. A moved-from array has no elements.
class Values {
public:
    using value_type = Variant;
    using iterator = std::span<Variant>::iterator;
    using const_iterator = std::span<const Variant>::iterator;

    // No elements, bounds 0 to -1.
    Values();
    Values(std::initializer_list<Variant> elements);
    Values(std::int32_t lower_bound, std::int32_t count);
    Values(const Values& other);
    Values(Values&& other) noexcept;
    Values& operator=(Values other) noexcept;
    ~Values();

    std::int32_t lower_bound() const;
    // One below the lower bound when there are no elements, which below the lowest number there is
    // is the highest.
    std::int32_t upper_bound() const;
    std::int32_t count() const;

    // By index between the bounds; raises 9 (subscript out of range).
    Variant& operator[](std::int32_t index);
    const Variant& operator[](std::int32_t index) const;

    // New elements are empty; what no longer fits is dropped. The lower bound stays. References and
    // spans end. The system's array has no spare room: growing by one moves every element, so give
    // a long array its size first.
    void resize(std::int32_t count);
    void push_back(Variant value);

    std::span<Variant> elements();
    std::span<const Variant> elements() const;
    auto begin() { return elements().begin(); }
    auto end() { return elements().end(); }
    auto begin() const { return elements().begin(); }
    auto end() const { return elements().end(); }

    bool operator==(const Values& other) const;

    // The border's own verbs; see Object. `attach` takes an array of variants with one dimension
    // and raises 13 for any other, which then stays the caller's; no array at all is no elements.
    // `detach` always gives an array.
    abi::SAFEARRAY* get() const { return array_; }
    abi::SAFEARRAY* detach();
    static Values attach(abi::SAFEARRAY* array);

private:
    explicit Values(abi::SAFEARRAY* array) : array_(array) {}

    abi::SAFEARRAY* array_;
};

}  // namespace orvo
