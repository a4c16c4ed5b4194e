#pragma once

#include "platform/system/automation.h"

namespace orvo {

// Tells the system to look for modules that nobody uses any more; it unloads them.
inline void unload_unused_modules() { abi::CoFreeUnusedLibraries(); }

}  // namespace orvo
