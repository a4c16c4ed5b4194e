#pragma once

#include <memory>

#include "suite/throttle/counters.h"

namespace orvo::throttle {

// Counts for all processes of the site, and in `local`, which lives longer, while their store
// cannot be reached; null where each process of the site counts for itself. Raises what is wrong
// with the store's settings.
std::unique_ptr<Counters> shared_counters(Counters& local);

}  // namespace orvo::throttle
