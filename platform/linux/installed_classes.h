#pragma once

// The classes of the modules on this system: the index that the process uses, read when it is first
// needed and read anew when a lookup misses and something has changed since. Raises nothing but for
// want of memory.

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <vector>

#include "platform/linux/manifest_index.h"

namespace orvo::runtime {

// Any thread. The lock is held for look-ups alone: no class is called and no file is read under it.
class InstalledClasses {
public:
    // A hit: the class is known and its manifest can be used.
    bool find(std::u16string_view progid, abi::CLSID& clsid) const;
    bool find(const abi::CLSID& clsid, ModuleFile*& module) const;

    // Reads the manifests anew if reading them could give something else than it did.
    void refresh();

    // Makes every lookup miss until the manifests have been read anew.
    void forget() {
        is_forgotten_ = true;
        ++reading_;
    }

    // For a lookup that has missed.
    struct Miss {
        bool is_listed;      // in a manifest that cannot be used
        std::string faults;  // of that manifest; otherwise of all, empty when there are none
        std::vector<std::filesystem::path> folders;  // that were looked into
    };
    Miss explain(std::u16string_view progid) const;
    Miss explain(const abi::CLSID& clsid) const;

private:
    template <class Key>
    const IndexedClass* usable(const Key& key) const;
    template <class Key>
    Miss explained(const Key& key) const;

    mutable std::shared_mutex lock_;
    std::unique_ptr<const ManifestIndex> index_ = std::make_unique<ManifestIndex>();
    std::mutex refreshing_;  // taken before lock_
    std::atomic<bool> is_forgotten_{true};
    // Counts the indexes read, so that threads notice when what they found last may be otherwise.
    std::atomic<std::uint64_t> reading_{1};
};

InstalledClasses& installed_classes();

}  // namespace orvo::runtime
