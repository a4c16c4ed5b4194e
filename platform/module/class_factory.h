#pragma once

// Class objects, and what keeps their module loaded.

#include <functional>
#include <string>

#include "platform/system/automation.h"
#include "platform/values/object.h"

namespace orvo {
namespace detail {

// A class object: makes objects through a function of its own, which may raise. Any thread may ask
// it for objects; each belongs to the thread that asked.
class ClassFactory {
public:
    // source: what failures of the creation are attributed to where they carry no source.
    ClassFactory(std::string source, std::function<Object()> create);
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    // Borrowed: a class object is not counted and lives as long as its owner.
    abi::IUnknown* get() { return reinterpret_cast<abi::IUnknown*>(&slots_); }
    Object create() const { return create_(); }
    const char* source() const { return source_.c_str(); }

private:
    const abi::Slot* slots_;
    std::string source_;
    std::function<Object()> create_;
};

// How many objects of this module are alive and how often it was locked: what DllCanUnloadNow asks.
long module_locks();

}  // namespace detail

}  // namespace orvo
