#pragma once

// Called on the object's own thread; answers what the object answers, nothing is raised.

#include "platform/system/automation.h"

namespace orvo::runtime {

// Reads the default property of an object, which the call holds while it runs: it may change what
// it was called through. `value` is the caller's to clear.
abi::HRESULT read_default_value(abi::IDispatch* object, abi::VARIANT& value);

}  // namespace orvo::runtime
