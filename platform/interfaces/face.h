#pragma once

// An object as its callers see it: one small face per interface, each a vtable pointer and a way
// back to the object. References are counted by any thread; the one that gives up the last one ends
// the object. Nothing here fails.

#include <atomic>
#include <span>
#include <thread>

#include "platform/system/automation.h"
#include "platform/values/failure.h"

namespace orvo::detail {

class ObjectCore;
struct InterfaceInfo;

// What an interface pointer points to.
struct Face {
    const abi::Slot* slots;
    ObjectCore* core;
    void* target;  // the C++ object, as the interface's class
    const InterfaceInfo* info;
};

// The part of an object that is the same for all: its count, its thread, its faces.
class ObjectCore {
public:
    // source: what failures without a source of their own are attributed to; a static text.
    ObjectCore(const char* source, bool shared);
    virtual ~ObjectCore();
    ObjectCore(const ObjectCore&) = delete;
    ObjectCore& operator=(const ObjectCore&) = delete;

    std::uint32_t add_reference() {
        return references_.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    std::uint32_t release_reference();

    // Made for sharing: any thread may use it.
    bool is_shared() const { return home_ == std::thread::id(); }
    // Whether the caller's thread may use the object: the one that made it, or any for one that is
    // shared.
    bool is_called_at_home() const { return is_shared() || home_ == std::this_thread::get_id(); }
    const char* source() const { return source_; }

    virtual std::span<Face> faces() = 0;
    // Told of each failure of the object's members, before the caller gets to know of it.
    virtual void failed(const char* /*member*/, const Failure&) const noexcept {}

private:
    std::atomic<std::uint32_t> references_{1};
    const std::thread::id home_;  // that of no thread: any
    const char* source_;
};

// How many objects of this module are alive, counted for DllCanUnloadNow.
std::atomic<long>& live_objects();

}  // namespace orvo::detail
