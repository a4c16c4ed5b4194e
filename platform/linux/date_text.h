#pragma once

// Dates as text: a double counts the days since 1899-12-30, its fraction is the time of day, as a
// magnitude also before that day (-1.25 is 1899-12-29 06:00). Any thread; nothing is raised. What
// is written stands in the caller's buffer, of which the view that is answered is a part.

#include <chrono>
#include <string_view>

#include "platform/system/automation.h"

namespace orvo::runtime {

inline constexpr std::chrono::sys_days first_day{std::chrono::year{1899} / 12 / 30};

// Legal dates lie between the years 100 and 9999.
inline constexpr int earliest_date = -657434;
inline constexpr int latest_date = 2958465;
bool is_legal_date(double date);

// Reads a date, a time or both, in US English whatever the locale: month/day/year, year-month-day,
// "2 January 2003", "12:30:45 PM". The order that the digits allow wins where the usual one is
// impossible (13/2/2003). A year below 100 lies between 1950 and 2049; a date without a year is in
// `this_year`. False when the text is no date.
bool read_date(std::u16string_view text, int this_year, double& date);

// The year of the system's local time.
int current_year();

struct DateBuffer {
    char text[32];
};

enum class DateStyle {
    us,        // 1/2/2003 1:15:15 PM
    invariant  // 01/02/2003 13:15:15
};

// Seconds are rounded; midnight shows the date only, day 0 the time only. The date must be legal.
std::string_view format_date(double date, DateStyle style, DateBuffer& buffer);

}  // namespace orvo::runtime
