#include "platform/linux/process_classes.h"

#include <algorithm>

#include "platform/values/progid.h"

namespace orvo::runtime {

using namespace abi;

std::uint32_t ProcessClasses::add(std::u16string_view progid, const CLSID& clsid,
                                  IUnknown* factory) {
    add_ref(factory);
    HeldFactory held(factory, [](IUnknown* object) { release(object); });
    std::size_t hash = ProgidHash()(progid);
    std::unique_lock guard(lock_);
    entries_.push_back({++last_cookie_, hash, std::u16string(version_independent(progid)), clsid,
                        std::move(held)});
    count_ = entries_.size();
    return last_cookie_;
}

void ProcessClasses::remove(std::uint32_t cookie) {
    HeldFactory released_after_the_lock;
    std::unique_lock guard(lock_);
    auto found = std::find_if(entries_.begin(), entries_.end(),
                              [&](const Entry& entry) { return entry.cookie == cookie; });
    if (found == entries_.end()) return;
    released_after_the_lock = std::move(found->factory);
    entries_.erase(found);
    count_ = entries_.size();
}

bool ProcessClasses::find(std::u16string_view progid, CLSID& clsid) const {
    if (count_ == 0) return false;
    std::shared_lock guard(lock_);
    std::size_t hash = ProgidHash()(progid);
    auto found = std::find_if(entries_.rbegin(), entries_.rend(), [&](const Entry& entry) {
        return entry.hash == hash && ProgidEqual()(entry.progid, progid);
    });
    if (found == entries_.rend()) return false;
    clsid = found->clsid;
    return true;
}

HeldFactory ProcessClasses::find(const CLSID& clsid) const {
    if (count_ == 0) return {};
    std::shared_lock guard(lock_);
    auto found = std::find_if(entries_.rbegin(), entries_.rend(),
                              [&](const Entry& entry) { return entry.clsid == clsid; });
    return found == entries_.rend() ? HeldFactory() : found->factory;
}

ProcessClasses& process_classes() {
    // Never destroyed: modules may ask for classes while the process ends.
    static ProcessClasses& classes = *new ProcessClasses;
    return classes;
}

}  // namespace orvo::runtime
