#pragma once

// Arrays of any number of dimensions and any element type, looked at from outside. What is answered
// are copies. All raise 13 for a value that is no array. Any thread that the value belongs to.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/values/variant.h"

namespace orvo {

// The indices of one dimension; `upper` is one below `lower` where there are no elements.
struct ArrayBounds {
    std::int32_t lower = 0;
    std::int32_t upper = -1;
    bool operator==(const ArrayBounds&) const = default;
};

// One element per dimension, the first dimension first; none for an array without any.
std::vector<ArrayBounds> bounds_of(const Variant& array);

// Elements of all dimensions together, and one of them in storage order: the first index runs
// fastest. `element_at` raises 9 for a position that is not there.
std::size_t element_count(const Variant& array);
Variant element_at(const Variant& array, std::size_t position);

// Raises 9 for an index outside the bounds, and where there is not one index per dimension.
Variant element(const Variant& array, std::span<const std::int32_t> indices);

}  // namespace orvo
