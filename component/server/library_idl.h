#pragma once

#include <string>

#include "platform/values/guid.h"

namespace orvo {

// A type library. `uses`: another one, by its name; empty for none.
struct LibraryName {
    const char* name;
    abi::GUID id;
    const char* uses;
};
inline constexpr LibraryName component_library{
    "OrvoMembership", guid("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E700"), "TavikPMMInterfaces"};
inline constexpr LibraryName provider_library{"TavikPMMInterfaces",
                                              guid("6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E7A0"), ""};

// The component's own IDL: its type library with error numbers, interfaces and classes. The text is
// committed as OrvoMembership.idl beside this file; the Windows build compiles that.
std::string component_idl();

// The IDL of the interfaces that the component uses and others implement: provider, configuration
// and log. The text is committed as TavikPMMInterfaces.idl beside this file. An author of a
// provider needs nothing else.
std::string provider_idl();

}  // namespace orvo
