#pragma once

// A filter of which a server cannot, or shall not, answer every part.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/filters/filter.h"

namespace orvo::directory {

struct SplitFilter {
    // What the server is asked: true of every entry that the whole filter is true of, and in all
    // likelihood of others.
    Filter sent;
    // What entries that it returns must still satisfy: the conditions among those side by side in
    // the filter that hold an item kept back. Nothing where the server answers all of it.
    std::optional<Filter> kept;
    // The attributes of `kept`.
    std::vector<std::string> attributes;
};

// Keeps back the items that `is_kept` tells. In place of an item the server is asked whether the
// entry has the attribute; where the item is negated, nothing.
SplitFilter split(const Filter& filter, const std::function<bool(const Filter& item)>& is_kept);

}  // namespace orvo::directory
