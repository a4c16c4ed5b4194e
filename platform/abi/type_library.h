#pragma once

// The type library that a module's file carries, for systems that know such libraries; on the
// others every call here does nothing.

#include <span>

#include "platform/abi/module.h"

namespace orvo::detail {

// Makes the calling module's library known to the system and names it in the keys of the module's
// classes, which are registered already. A module without a library changes nothing. Raises
// Failure.
void register_type_library(std::span<const ModuleClass> classes);

// Forgets the library; what its classes' keys say of it goes with them. Raises Failure.
void unregister_type_library();

// What the library says of an interface (an ITypeInfo); empty where it says nothing. Any thread.
Object try_type_info(const abi::IID& iid) noexcept;

}  // namespace orvo::detail
