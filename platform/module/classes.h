#pragma once

#include "platform/abi/module.h"

namespace orvo {

// The record set under a name of its own, which no system has another class for.
inline constexpr const char* own_record_set_progid = "OrvoPlatform.Recordset";
inline constexpr abi::CLSID own_record_set_clsid = guid("fbca2f69-2f32-4086-b3f8-77ba25367bc1");

// The classes that this module offers on the system it was built for: Windows has record sets and
// dictionaries of its own, and keeps them.
std::span<const ModuleClass> platform_classes();

}  // namespace orvo
