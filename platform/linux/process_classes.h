#pragma once

// Classes that the program itself has registered. Nothing is raised but for want of memory.

#include <atomic>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

#include "platform/system/automation.h"

namespace orvo::runtime {

// A class object that is held while somebody needs it. Giving up the last one calls the object.
using HeldFactory = std::shared_ptr<abi::IUnknown>;

// Any thread; no class object is called while the list is locked.
class ProcessClasses {
public:
    // The latest of two registrations of the same ProgID or class counts, while it lasts.
    std::uint32_t add(std::u16string_view progid, const abi::CLSID& clsid, abi::IUnknown* factory);
    // Nothing happens when there is no such registration.
    void remove(std::uint32_t cookie);

    bool find(std::u16string_view progid, abi::CLSID& clsid) const;
    // Null when there is none.
    HeldFactory find(const abi::CLSID& clsid) const;

private:
    struct Entry {
        std::uint32_t cookie;
        std::size_t hash;
        std::u16string progid;
        abi::CLSID clsid;
        HeldFactory factory;
    };

    mutable std::shared_mutex lock_;
    std::vector<Entry> entries_;
    std::atomic<std::size_t> count_{0};  // of entries_, for the usual case that there are none
    std::uint32_t last_cookie_ = 0;
};

ProcessClasses& process_classes();

}  // namespace orvo::runtime
