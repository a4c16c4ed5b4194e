#pragma once

// How the suite's other parts count, whatever module they are in.

#include "platform/values/text.h"

namespace orvo::counters {

// Password checks, by their outcome: "right", "wrong", "locked", "disabled", "expired", "too many
// failures", "throttled", "failure".
inline constexpr const char16_t* logins = u"logins";
// What the authorization filter does: "login", "refusal", "logout".
inline constexpr const char16_t* filter = u"filter";

// Once more. Where there are no counters nothing is counted. Raises nothing.
void count_event(TextView name, TextView kind) noexcept;

}  // namespace orvo::counters
