#pragma once

#include <cstdint>
#include <limits>

#include "platform/values/failure.h"

namespace orvo {

// Counts from lower to upper with a 16-bit index, as the loops over lists of roles and applications
// do: `visit` is called with each index until it answers true. Answers whether it did. Bounds that
// 16 bits do not hold, and a count that would go past 32767, raise 6 (overflow), which is what
// callers get for a list that is too long: half of it is never taken for the whole.
template <class Visit>
bool any_index16(std::int32_t lower, std::int32_t upper, Visit visit) {
    constexpr std::int32_t last = std::numeric_limits<std::int16_t>::max();
    constexpr std::int32_t first = std::numeric_limits<std::int16_t>::min();
    if (lower < first || lower > last || upper < first || upper > last)
        raise_runtime_error(runtime_error::overflow);
    for (std::int32_t index = lower; index <= upper; ++index) {
        if (visit(index)) return true;
    }
    if (upper == last && lower <= upper) raise_runtime_error(runtime_error::overflow);
    return false;
}

}  // namespace orvo
