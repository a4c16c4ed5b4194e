#pragma once

// Points in time, and their parts. Plain values; any thread.

#include <compare>

namespace orvo {

// A point in time as Automation counts it: days since 1899-12-30 00:00, without a time zone. The
// fraction is the time of day and always counts forward (-1.25 is 1899-12-29 06:00). From year 100
// to 9999. Resolution is about a millisecond.
struct Date {
    double days = 0;
    auto operator<=>(const Date&) const = default;
};

// The parts of a date on the proleptic Gregorian calendar; month and day count from 1.
struct DateParts {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
    bool operator==(const DateParts&) const = default;
};

// Conversions between the two. `date_from_parts` accepts seconds up to 59 and real calendar days
// only; raises run-time error 5 otherwise. `parts_of` rounds to the second; raises overflow (6) for
// a date outside the years 100 to 9999.
Date date_from_parts(const DateParts& parts);
DateParts parts_of(Date date);

}  // namespace orvo
