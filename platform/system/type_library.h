#pragma once

// The type library that a module's file carries. Only Windows has such libraries; on Linux every
// call here does nothing. Any thread.

#include <span>

#include "platform/system/registration.h"

namespace orvo::runtime {

// Makes the calling module's library known to the system and names it in the keys of the module's
// classes, which are registered already. A module without a library changes nothing. Raises
// Failure.
void register_type_library(std::span<const ClassEntry> classes);

// Forgets the library; what its classes' keys say of it goes with them. Raises Failure.
void unregister_type_library();

// What the library says of an interface (an ITypeInfo), a reference for the caller; null where it
// says nothing.
abi::IUnknown* try_type_info(const abi::IID& iid) noexcept;

}  // namespace orvo::runtime
