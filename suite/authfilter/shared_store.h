#pragma once

#include <memory>

#include "suite/authfilter/filter_store.h"

namespace orvo::authfilter {

// The store of the site's section [STORE]; null where that is memory. Raises as store::site_store.
std::unique_ptr<Store> try_shared_store();

}  // namespace orvo::authfilter
