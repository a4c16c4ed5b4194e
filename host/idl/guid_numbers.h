#pragma once

#include <string>

#include "platform/system/automation.h"

namespace orvo {

// "0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, …": an identifier as C++ has it, `before_last` in front of the
// last eight numbers.
std::string guid_numbers(const abi::GUID& id, const char* before_last = "");

}  // namespace orvo
