#include "platform/values/date.h"

#include <chrono>
#include <cmath>

#include "platform/values/failure.h"

namespace orvo {
namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days epoch = year(1899) / month(12) / day(30);
constexpr int first_day = (sys_days(year(100) / month(1) / day(1)) - epoch).count();
constexpr int last_day = (sys_days(year(9999) / month(12) / day(31)) - epoch).count();
constexpr int seconds_of_a_day = 24 * 60 * 60;
static_assert(first_day == -657434 && last_day == 2958465);

bool within(int value, int first, int last) { return value >= first && value <= last; }

}  // namespace

Date date_from_parts(const DateParts& parts) {
    if (!within(parts.year, 100, 9999) || !within(parts.month, 1, 12) ||
        !within(parts.day, 1, 31) || !within(parts.hour, 0, 23) || !within(parts.minute, 0, 59) ||
        !within(parts.second, 0, 59)) {
        raise_runtime_error(runtime_error::invalid_call);
    }
    const year_month_day calendar(year(parts.year), month(static_cast<unsigned>(parts.month)),
                                  day(static_cast<unsigned>(parts.day)));
    if (!calendar.ok()) raise_runtime_error(runtime_error::invalid_call);
    const int whole = (sys_days(calendar) - epoch).count();
    const int seconds = (parts.hour * 60 + parts.minute) * 60 + parts.second;
    const double time = static_cast<double>(seconds) / seconds_of_a_day;
    return Date{whole < 0 ? whole - time : whole + time};
}

DateParts parts_of(Date date) {
    const double truncated = std::trunc(date.days);
    if (!(truncated >= first_day && truncated <= last_day)) {
        raise_runtime_error(runtime_error::overflow);
    }
    int whole = static_cast<int>(truncated);
    int seconds = static_cast<int>(std::round(std::abs(date.days - truncated) * seconds_of_a_day));
    if (seconds == seconds_of_a_day) {
        seconds = 0;
        if (++whole > last_day) raise_runtime_error(runtime_error::overflow);
    }
    const year_month_day calendar(epoch + days(whole));
    return {static_cast<int>(calendar.year()),
            static_cast<int>(static_cast<unsigned>(calendar.month())),
            static_cast<int>(static_cast<unsigned>(calendar.day())),
            seconds / 3600,
            seconds / 60 % 60,
            seconds % 60};
}

}  // namespace orvo
