#pragma once

// The site's shared store, as this process uses it.

#include <memory>

#include "suite/store/keyring.h"
#include "suite/store/redis.h"

namespace orvo::store {

struct SiteStore {
    std::shared_ptr<Redis> redis;
    Keyring keyring;
};

// By the settings of the site as they are at the first call that raises nothing; each module that
// links this library has its own, for as long as it is loaded. Null: the site's store is memory.
// Raises what settings_of_site, Keyring::read and Redis raise. Any thread, while no other one
// changes the environment.
std::shared_ptr<const SiteStore> site_store();

}  // namespace orvo::store
