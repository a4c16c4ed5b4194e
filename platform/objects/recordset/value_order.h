#pragma once

// Any thread that the values belong to; nothing fails: what has no order counts as equal.

#include "platform/values/variant.h"

namespace orvo::recordset {

// The order of values in a sorted record set: none (Null, Empty), numbers and dates, texts without
// regard to case, everything else. A list of values counts as its first. Negative, 0, positive.
int compare_values(const Variant& a, const Variant& b);

}  // namespace orvo::recordset
