#include "suite/counters/store_figures.h"

#include "suite/store/site_store.h"

namespace orvo::counters {

std::optional<StoreFigures> store_figures() {
    const auto site = store::site_store();
    if (!site) return std::nullopt;
    return StoreFigures{site->redis->is_reachable(), site->redis->counts()};
}

}  // namespace orvo::counters
