#pragma once

// The type libraries that a module's file carries. Only Windows has such libraries; on Linux every
// call here does nothing. Any thread.

#include <span>

#include "platform/system/registration.h"

namespace orvo::runtime {

// Makes the calling module's libraries known to the system, and names the first one in the keys of
// the module's classes, which are registered already. A module without a library changes nothing.
//
// An interface that another library describes already stays that library's: it is somebody else's
// who has registered it. Raises Failure.
void register_type_libraries(std::span<const ClassEntry> classes, Scope scope = Scope::machine);

// Forgets the libraries and those interfaces that are theirs by what is registered now. Raises
// Failure.
void unregister_type_libraries(Scope scope = Scope::machine);

// What the libraries say of an interface (an ITypeInfo), a reference for the caller; null where
// they say nothing.
abi::IUnknown* try_type_info(const abi::IID& iid) noexcept;

}  // namespace orvo::runtime
