#pragma once

#include "platform/abi/guid.h"

namespace orvo {

// A new identifier from the operating system. The call's result code is not checked.
abi::GUID Win32_CreateGuid();

}  // namespace orvo
