#pragma once

// Arguments that a late-bound caller passes by reference: a variable of the caller's, of its type.
// Everything here borrows from the caller for the length of the call, on the thread of the call.

#include "platform/system/automation.h"
#include "platform/values/variant.h"

namespace orvo::detail {

// A caller's variant, which is no by-reference value, used where it stands.
Variant* in_place(abi::VARIANT& variable);

// Writes a value into the variable that a by-reference variant refers to, converted to its type;
// leaves it alone when the value cannot be converted. Answers what the variable held before. A
// value of the variable's own type is moved there; any other stays the caller's.
Variant store_through_reference(abi::VARIANT& reference, Variant& value);

// What a caller passed, its references followed; `storage` where that takes a copy.
const Variant& follow_reference(const abi::VARIANT& passed, Variant& storage);

}  // namespace orvo::detail
