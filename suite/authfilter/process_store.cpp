#include "suite/authfilter/process_store.h"

#include "suite/authfilter/memory_store.h"
#include "suite/authfilter/shared_store.h"

namespace orvo::authfilter {
namespace {

std::unique_ptr<Store> new_store() {
    std::unique_ptr<Store> store = try_shared_store();
    return store ? std::move(store) : std::make_unique<MemoryStore>();
}

}  // namespace

Store& process_store() {
    static const std::unique_ptr<Store> store = new_store();
    return *store;
}

}  // namespace orvo::authfilter
