#include "suite/authfilter/shared_store.h"
#include "suite/store/store_settings.h"

namespace orvo::authfilter {

// Here no site has one: settings that ask for it are refused.
std::unique_ptr<Store> try_shared_store() {
    store::settings_of_site();
    return nullptr;
}

}  // namespace orvo::authfilter
