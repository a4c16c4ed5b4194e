#pragma once

// The times in the attributes of accounts, which are generalized times.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace orvo::directory {

using Moment = std::chrono::sys_time<std::chrono::microseconds>;

// Where in time a generalized time is, to the second. Nothing for other texts and for years outside
// 100 to 9999.
std::optional<std::chrono::sys_seconds> try_seconds(std::string_view generalized_time);

// "20260131235959Z", and with what is below the second "20260131235959.123456Z".
std::string time_in_seconds(Moment moment);
std::string time_in_microseconds(Moment moment);

}  // namespace orvo::directory
