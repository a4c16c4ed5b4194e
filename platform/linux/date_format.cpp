#include <charconv>
#include <cmath>

#include "platform/linux/date_text.h"

namespace orvo::runtime {

namespace {

constexpr int seconds_a_day = 86'400;
constexpr double shortest_time = 1e-12;  // of a day; what is less comes from computing

char* put(char* to, int number, int width) {
    for (int limit = 10, left = width - 1; left > 0; --left, limit *= 10)
        if (number < limit) *to++ = '0';
    return std::to_chars(to, to + 8, number).ptr;
}

char* put_day(char* to, int serial, DateStyle style) {
    std::chrono::year_month_day day{first_day + std::chrono::days{serial}};
    int width = style == DateStyle::us ? 1 : 2;
    to = put(to, static_cast<int>(static_cast<unsigned>(day.month())), width);
    *to++ = '/';
    to = put(to, static_cast<int>(static_cast<unsigned>(day.day())), width);
    *to++ = '/';
    return put(to, static_cast<int>(day.year()), style == DateStyle::us ? 1 : 4);
}

char* put_time(char* to, int second, DateStyle style) {
    int hour = second / 3600;
    if (style == DateStyle::us)
        to = put(to, hour % 12 == 0 ? 12 : hour % 12, 1);
    else
        to = put(to, hour, 2);
    *to++ = ':';
    to = put(to, second / 60 % 60, 2);
    *to++ = ':';
    to = put(to, second % 60, 2);
    if (style == DateStyle::us) {
        *to++ = ' ';
        *to++ = hour < 12 ? 'A' : 'P';
        *to++ = 'M';
    }
    return to;
}

}  // namespace

bool is_legal_date(double date) { return date > earliest_date - 1.0 && date < latest_date + 1.0; }

std::string_view format_date(double date, DateStyle style, DateBuffer& buffer) {
    double whole;
    double time = std::fabs(std::modf(date, &whole));
    // What is shown is decided before rounding: a moment before midnight is a time of day.
    const bool has_day = whole != 0;
    const bool has_time = !has_day || time >= shortest_time;
    int serial = static_cast<int>(whole);
    int second = static_cast<int>(std::lround(time * seconds_a_day));
    if (second == seconds_a_day) {
        second = 0;
        if (serial < latest_date)
            ++serial;
        else
            second = seconds_a_day - 1;
    }
    char* to = buffer.text;
    if (has_day) to = put_day(to, serial, style);
    if (has_day && has_time) *to++ = ' ';
    if (has_time) to = put_time(to, second, style);
    return {buffer.text, static_cast<std::size_t>(to - buffer.text)};
}

}  // namespace orvo::runtime
