#pragma once

#include "platform/values/variant.h"

namespace orvo::web {

// What Response.Write writes of a value: nothing of empty and null, numbers as the script shows
// them ("0.1", "1e+21"), the elements of an array with "," between, an object's default value, and
// anything else as Automation has it as text. Raises 13 for an array of several dimensions, and
// what an object raises that has no default value.
Text written_text(const Variant& value);

}  // namespace orvo::web
