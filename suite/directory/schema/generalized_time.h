#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/values/date.h"

namespace orvo::directory {

// A generalized time ("20240229123000Z", RFC 4517 3.3.13) as a date in UTC: minutes and seconds may
// be missing, a fraction and a difference to UTC are reckoned in, a leap second counts as the last
// ordinary one. Nothing for other texts and for years outside 100 to 9999.
std::optional<Date> try_date(std::string_view generalized_time);

// How a server wants them: most take both forms, some only the second.
enum class TimeForm { whole_seconds, with_fraction };

// The other way: "YYYYMMDDhhmmssZ" or "YYYYMMDDhhmmss.0Z", to the second. Raises 6 (overflow) for a
// date out of range.
std::string generalized_time(Date date, TimeForm form = TimeForm::whole_seconds);

}  // namespace orvo::directory
