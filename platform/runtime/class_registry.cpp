#include "platform/runtime/class_registry.h"

#include "platform/runtime/search_path.h"

namespace orvo::runtime {

using namespace abi;

template <class Key>
const CatalogueEntry* ClassRegistry::usable(const Key& key) const {
    if (is_forgotten_.load(std::memory_order_relaxed)) return nullptr;
    const CatalogueEntry* entry = catalogue_->find(key);
    return entry && entry->module ? entry : nullptr;
}

bool ClassRegistry::find(std::u16string_view progid, CLSID& clsid) const {
    std::shared_lock guard(lock_);
    const CatalogueEntry* entry = usable(progid);
    if (entry) clsid = entry->clsid;
    return entry;
}

bool ClassRegistry::find(const CLSID& clsid, Module*& module) const {
    std::shared_lock guard(lock_);
    const CatalogueEntry* entry = usable(clsid);
    if (entry) module = entry->module;
    return entry;
}

void ClassRegistry::refresh() {
    std::lock_guard refreshing(refreshing_);
    std::vector<std::filesystem::path> folders = manifest_folders();
    // Only this function, one call at a time, replaces the catalogue: it may be read unlocked.
    if (!is_forgotten_.exchange(false) && catalogue_->is_current(folders)) return;
    auto read = std::make_unique<const Catalogue>(std::move(folders));
    std::unique_lock guard(lock_);
    catalogue_.swap(read);
}

template <class Key>
ClassRegistry::Miss ClassRegistry::explained(const Key& key) const {
    std::shared_lock guard(lock_);
    const CatalogueEntry* entry = catalogue_->find(key);
    if (entry && !entry->module) return {true, entry->fault};
    return {false, catalogue_->faults()};
}

ClassRegistry::Miss ClassRegistry::explain(std::u16string_view progid) const {
    return explained(progid);
}

ClassRegistry::Miss ClassRegistry::explain(const CLSID& clsid) const { return explained(clsid); }

ClassRegistry& class_registry() {
    // Never destroyed: modules may ask for classes while the process ends.
    static ClassRegistry& registry = *new ClassRegistry;
    return registry;
}

}  // namespace orvo::runtime
