#pragma once

// What somebody meant who has mistyped a name.

#include <span>

#include "platform/values/text.h"

namespace orvo {

// The known name that is nearest to a given one, without regard to case: fewest letters to put in,
// leave out, replace, or swap with their neighbours. Empty where more than half of it would have to
// change.
TextView nearest_name(TextView given, std::span<const TextView> known);

}  // namespace orvo
