#pragma once

// Any thread that the values belong to; nothing fails: what has no order counts as equal.

#include "platform/values/text_order.h"
#include "platform/values/variant.h"

namespace orvo::recordset {

// The order of values in a sorted record set: none (Null, Empty), numbers and dates, texts,
// everything else. A list of values counts as its first. Negative, 0, positive, as one level of the
// order of texts sees it; all other values differ at the first level or not at all.
int compare_values(OrderLevel level, const Variant& a, const Variant& b);

}  // namespace orvo::recordset
