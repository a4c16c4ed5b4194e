#pragma once

// The system's arrays, as the values of this room read them. A view borrows: it is good as long as
// the variant that holds the array is neither changed nor gone. Failures are raised as Failure.

#include <cstddef>

#include "platform/system/automation.h"
#include "platform/values/variant.h"

namespace orvo::detail {

// What a variant of an array type holds: the array (none when it was never dimensioned) and the
// type of its elements.
struct ArrayView {
    abi::SAFEARRAY* array;
    abi::VARTYPE type;

    bool is_vector() const { return !array || array->cDims == 1; }
    std::int32_t lower_bound() const { return array ? array->rgsabound[0].lLbound : 0; }
    // Elements of all dimensions together.
    std::size_t size() const;
    // The element at a position in storage order, as a value of its own.
    Variant at(std::size_t position) const;
};

// Raises 13 when `value` is no array.
ArrayView array_of(const abi::VARIANT& value);

}  // namespace orvo::detail
