#pragma once

#include <string>

namespace orvo {

// The component's own IDL: its type library with error numbers, interfaces and classes. The text is
// committed as OrvoMembership.idl beside this file; the Windows build compiles that.
std::string component_idl();

// The IDL of the interfaces that the component uses and others implement: provider, configuration
// and log. The text is committed as TavikPMMInterfaces.idl beside this file. An author of a
// provider needs nothing else.
std::string provider_idl();

}  // namespace orvo
