#include "platform/runtime/class_registry.h"

#include "platform/runtime/search_path.h"

namespace orvo::runtime {

using namespace abi;

namespace {

// The class that a thread found last. Most threads create the same one again and again, and ask for
// it by name and right afterwards by its identifier.
struct LastFound {
    const ClassRegistry* registry = nullptr;
    std::uint64_t reading = 0;
    std::size_t length = 0;
    char16_t progid[48] = {};
    CLSID clsid = {};
    Module* module = nullptr;
};

thread_local LastFound last_found;

void keep(const ClassRegistry& registry, std::uint64_t reading, std::u16string_view progid,
          const CatalogueEntry& entry) {
    if (progid.size() > std::size(last_found.progid)) return;
    last_found.registry = &registry;
    last_found.reading = reading;
    last_found.length = progid.copy(last_found.progid, progid.size());
    last_found.clsid = entry.clsid;
    last_found.module = entry.module;
}

}  // namespace

template <class Key>
const CatalogueEntry* ClassRegistry::usable(const Key& key) const {
    if (is_forgotten_.load(std::memory_order_relaxed)) return nullptr;
    const CatalogueEntry* entry = catalogue_->find(key);
    return entry && entry->module ? entry : nullptr;
}

bool ClassRegistry::find(std::u16string_view progid, CLSID& clsid) const {
    // Before the catalogue is looked into: where another one comes meanwhile, it is not this one's.
    const std::uint64_t reading = reading_;
    const LastFound& last = last_found;
    if (last.registry == this && last.reading == reading &&
        progid == std::u16string_view(last.progid, last.length)) {
        clsid = last.clsid;
        return true;
    }
    std::shared_lock guard(lock_);
    const CatalogueEntry* entry = usable(progid);
    if (!entry) return false;
    clsid = entry->clsid;
    // Of a class that is listed twice the first counts, whatever name it was asked for by.
    if (usable(entry->clsid) == entry) keep(*this, reading, progid, *entry);
    return true;
}

bool ClassRegistry::find(const CLSID& clsid, Module*& module) const {
    const LastFound& last = last_found;
    if (last.registry == this && last.reading == reading_ && clsid == last.clsid) {
        module = last.module;
        return true;
    }
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
    ++reading_;
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
