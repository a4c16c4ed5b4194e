#include "suite/authfilter/shared_store.h"

#include "suite/authfilter/cached_store.h"

namespace orvo::authfilter {

std::unique_ptr<Store> try_shared_store() {
    auto site = store::site_store();
    return site ? std::make_unique<CachedStore>(std::move(site)) : nullptr;
}

}  // namespace orvo::authfilter
