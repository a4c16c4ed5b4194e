#include "platform/linux/installed_classes.h"

#include "platform/linux/search_path.h"

namespace orvo::runtime {

using namespace abi;

namespace {

// The class that a thread found last. Most threads create the same one again and again, and ask for
// it by name and right afterwards by its identifier.
struct LastFound {
    const InstalledClasses* classes = nullptr;
    std::uint64_t reading = 0;
    std::size_t length = 0;
    char16_t progid[48] = {};
    CLSID clsid = {};
    ModuleFile* module = nullptr;
};

thread_local LastFound last_found;

void keep(const InstalledClasses& classes, std::uint64_t reading, std::u16string_view progid,
          const IndexedClass& entry) {
    if (progid.size() > std::size(last_found.progid)) return;
    last_found.classes = &classes;
    last_found.reading = reading;
    last_found.length = progid.copy(last_found.progid, progid.size());
    last_found.clsid = entry.clsid;
    last_found.module = entry.module;
}

}  // namespace

template <class Key>
const IndexedClass* InstalledClasses::usable(const Key& key) const {
    if (is_forgotten_.load(std::memory_order_relaxed)) return nullptr;
    const IndexedClass* entry = index_->find(key);
    return entry && entry->module ? entry : nullptr;
}

bool InstalledClasses::find(std::u16string_view progid, CLSID& clsid) const {
    // Before the index is looked into: where another one comes meanwhile, it is not this one's.
    const std::uint64_t reading = reading_;
    const LastFound& last = last_found;
    if (last.classes == this && last.reading == reading &&
        progid == std::u16string_view(last.progid, last.length)) {
        clsid = last.clsid;
        return true;
    }
    std::shared_lock guard(lock_);
    const IndexedClass* entry = usable(progid);
    if (!entry) return false;
    clsid = entry->clsid;
    // Of a class that is listed twice the first counts, whatever name it was asked for by.
    if (usable(entry->clsid) == entry) keep(*this, reading, progid, *entry);
    return true;
}

bool InstalledClasses::find(const CLSID& clsid, ModuleFile*& module) const {
    const LastFound& last = last_found;
    if (last.classes == this && last.reading == reading_ && clsid == last.clsid) {
        module = last.module;
        return true;
    }
    std::shared_lock guard(lock_);
    const IndexedClass* entry = usable(clsid);
    if (entry) module = entry->module;
    return entry;
}

void InstalledClasses::refresh() {
    std::lock_guard refreshing(refreshing_);
    std::vector<std::filesystem::path> folders = manifest_folders();
    // Only this function, one call at a time, replaces the index: it may be read unlocked.
    if (!is_forgotten_.exchange(false) && index_->is_current(folders)) return;
    auto read = std::make_unique<const ManifestIndex>(std::move(folders));
    std::unique_lock guard(lock_);
    index_.swap(read);
    ++reading_;
}

template <class Key>
InstalledClasses::Miss InstalledClasses::explained(const Key& key) const {
    std::shared_lock guard(lock_);
    const IndexedClass* entry = index_->find(key);
    if (entry && !entry->module) return {true, entry->fault, {}};
    return {false, index_->faults(), index_->folders()};
}

InstalledClasses::Miss InstalledClasses::explain(std::u16string_view progid) const {
    return explained(progid);
}

InstalledClasses::Miss InstalledClasses::explain(const CLSID& clsid) const {
    return explained(clsid);
}

InstalledClasses& installed_classes() {
    // Never destroyed: modules may ask for classes while the process ends.
    static InstalledClasses& classes = *new InstalledClasses;
    return classes;
}

}  // namespace orvo::runtime
