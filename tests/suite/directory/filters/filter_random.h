#pragma once

// Random filter trees and random changes of texts, the same for the same seed on every machine.

#include <cstdint>
#include <string>

#include "suite/directory/filters/filter.h"

namespace orvo::directory {

class FilterDice {
public:
    explicit FilterDice(std::uint32_t seed) : state_(seed) {}

    // From 0 to `sides` - 1.
    std::size_t roll(std::size_t sides);

    // A tree as reading gives it, not more than `levels` deep.
    Filter tree(int levels);
    // Some characters put in, taken out, doubled or changed; `other` may give a piece of itself.
    Text changed(TextView text, TextView other);

private:
    template <class Range>
    const auto& one_of(const Range& range) {
        return range[roll(std::size(range))];
    }
    std::string octets(std::size_t at_least);
    Filter item();

    std::uint64_t state_;
};

}  // namespace orvo::directory
