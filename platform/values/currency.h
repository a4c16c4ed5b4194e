#pragma once

// A plain value.

#include <compare>
#include <cstdint>

namespace orvo {

// A fixed-point amount with four decimals: `units` counts ten-thousandths (12.5 is 125000).
struct Currency {
    std::int64_t units = 0;
    auto operator<=>(const Currency&) const = default;
};

}  // namespace orvo
