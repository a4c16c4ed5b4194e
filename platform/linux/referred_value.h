#pragma once

// By-reference variants. Any thread; failures are results, nothing is raised.

#include "platform/system/automation.h"

namespace orvo::runtime {

// The variant that a by-reference variant refers to, any other as it is. What it owns is borrowed:
// `value` must not be cleared. A null pointer and a reference to a reference to a variant are
// E_INVALIDARG.
abi::HRESULT borrow_referred(const abi::VARIANT& from, abi::VARIANT& value);

// Puts `value`, which is taken over, in the place of what `to` holds.
abi::HRESULT replace(abi::VARIANT* to, abi::VARIANT value);

}  // namespace orvo::runtime
