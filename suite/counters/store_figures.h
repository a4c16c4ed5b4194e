#pragma once

#include <optional>

#include "suite/store/redis.h"

namespace orvo::counters {

struct StoreFigures {
    bool is_reachable;
    store::Redis::Counts counts;
};

// Of the site's shared store, as this module uses it; nothing where the site has none. Raises what
// store::site_store does.
std::optional<StoreFigures> store_figures();

}  // namespace orvo::counters
