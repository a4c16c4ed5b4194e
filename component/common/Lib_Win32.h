#pragma once

#include "platform/values/guid.h"

namespace orvo {

// A new identifier from the operating system. Any thread. The call's result code is not checked:
// where it fails, the identifier is all zeros.
abi::GUID Win32_CreateGuid();

}  // namespace orvo
