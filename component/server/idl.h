#pragma once

#include <string>

namespace orvo {

// The component's whole IDL: its type library with error numbers, interfaces and classes. The text
// is committed as OrvoMembership.idl beside this file; the Windows build compiles that.
std::string component_idl();

}  // namespace orvo
