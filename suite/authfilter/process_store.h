#pragma once

#include "suite/authfilter/filter_store.h"

namespace orvo::authfilter {

// The store that all connectors of this process share: what the site's section [STORE] says at the
// first call that raises nothing. Raises what store::site_store does.
Store& process_store();

}  // namespace orvo::authfilter
