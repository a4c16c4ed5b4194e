// Generalized times. The input is one, or one in each of two lines.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>

#include "suite/directory/filters/matching_rule.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/generalized_time.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::directory;

std::optional<std::string> key_of(std::string_view text) {
    return matching_key(MatchingRule::time, text);
}

// The seconds since 1970 that a time in its plainest form says, "20240229123000+0130", reckoned in
// whole numbers.
std::optional<std::int64_t> plain_seconds(std::string_view text) {
    using namespace std::chrono;
    constexpr std::size_t behind_seconds = 14;
    if (!std::ranges::all_of(text.substr(0, behind_seconds), ascii::is_digit)) return {};
    const std::string_view zone = text.substr(std::min(behind_seconds, text.size()));
    if (zone != "Z" && (zone.size() != 5 || (zone[0] != '+' && zone[0] != '-'))) return {};
    const auto number = [&](std::size_t at, std::size_t digits) {
        return std::atoi(std::string(text.substr(at, digits)).c_str());
    };
    const year_month_day date(year(number(0, 4)), month(static_cast<unsigned>(number(4, 2))),
                              day(static_cast<unsigned>(number(6, 2))));
    const auto time = sys_days(date) + hours(number(8, 2)) + minutes(number(10, 2)) +
                      seconds(std::min(number(12, 2), 59));
    std::int64_t result = seconds(time.time_since_epoch()).count();
    if (zone != "Z") result += (zone[0] == '+' ? -60 : 60) * (number(15, 2) * 60 + number(17, 2));
    return result;
}

std::int64_t seconds_of(const DateParts& parts) {
    using namespace std::chrono;
    const year_month_day date(year(parts.year), month(static_cast<unsigned>(parts.month)),
                              day(static_cast<unsigned>(parts.day)));
    return seconds(sys_days(date).time_since_epoch()).count() + parts.hour * 3600 +
           parts.minute * 60 + parts.second;
}

void check_time(std::string_view text) {
    const std::optional<Date> date = try_date(text);
    require(date.has_value() == key_of(text).has_value(), "a time has a key, and nothing else");
    if (!date) return;
    const std::string written = generalized_time(*date);
    const std::optional<Date> again = try_date(written);
    require(again && parts_of(*again) == parts_of(*date), "a time is read back to the second");
    require(generalized_time(*again) == written, "a time is written again as it was");
    require(try_date(generalized_time(*date, TimeForm::with_fraction)) == again,
            "the form with a fraction means the same");
    if (const std::optional<std::int64_t> seconds = plain_seconds(text))
        require(seconds_of(parts_of(*date)) == *seconds, "a time is reckoned in UTC");
}

// One scale for both sides of the epoch.
double linear(Date date) {
    const double day = std::trunc(date.days);
    return day + std::abs(date.days - day);
}

void check_order(std::string_view one, std::string_view other) {
    const std::optional<Date> a = try_date(one);
    const std::optional<Date> b = try_date(other);
    if (!a || !b) return;
    constexpr double some_milliseconds = 0.005 / (24 * 60 * 60);
    if (linear(*a) + some_milliseconds < linear(*b))
        require(key_of(one) < key_of(other), "keys are in the order of the times");
}

}  // namespace

void generalized_time_properties(std::string_view input) {
    const auto [first, second] = first_line_and_rest(input);
    check_time(first);
    check_time(second);
    check_order(first, second);
    check_order(second, first);
}

}  // namespace orvo::fuzz
