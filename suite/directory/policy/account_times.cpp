#include "suite/directory/policy/account_times.h"

#include <cmath>
#include <cstdio>

#include "suite/directory/schema/generalized_time.h"

namespace orvo::directory {
namespace {

using std::chrono::floor;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;

// The day that a date counts as 0.
constexpr sys_days first_day = std::chrono::year(1899) / 12 / 30;

std::string written(Moment moment, const char* end) {
    const auto day = floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(floor<seconds>(moment) - day);
    char text[64];
    std::snprintf(text, sizeof text, "%04d%02u%02u%02d%02d%02d%s", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()), end);
    return text;
}

}  // namespace

std::optional<sys_seconds> try_seconds(std::string_view generalized_time) {
    const std::optional<Date> date = try_date(generalized_time);
    if (!date) return std::nullopt;
    const double whole_days = std::trunc(date->days);
    const double days = whole_days + std::abs(date->days - whole_days);
    return floor<seconds>(first_day + milliseconds(std::llround(days * 86'400'000)));
}

std::string time_in_seconds(Moment moment) { return written(moment, "Z"); }

std::string time_in_microseconds(Moment moment) {
    char end[16];
    std::snprintf(end, sizeof end, ".%06dZ",
                  static_cast<int>((moment - floor<seconds>(moment)).count()));
    return written(moment, end);
}

}  // namespace orvo::directory
