#include "suite/directory/schema/generalized_time.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

// A number of exactly `digits` digits, cut off the front.
std::optional<int> take_number(std::string_view& text, std::size_t digits) {
    if (text.size() < digits) return std::nullopt;
    int number = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        if (!ascii::is_digit(text[i])) return std::nullopt;
        number = number * 10 + ascii::digit_value(text[i]);
    }
    text.remove_prefix(digits);
    return number;
}

bool starts_with_digit(std::string_view text) { return !text.empty() && ascii::is_digit(text[0]); }

// ".5" or ",5", cut off the front; 0 when there is none.
std::optional<double> take_fraction(std::string_view& text) {
    if (text.empty() || (text[0] != '.' && text[0] != ',')) return 0.0;
    text.remove_prefix(1);
    if (!starts_with_digit(text)) return std::nullopt;
    double fraction = 0;
    for (double place = 0.1; starts_with_digit(text); place /= 10) {
        fraction += ascii::digit_value(text[0]) * place;
        text.remove_prefix(1);
    }
    return fraction;
}

// "Z" or "+hhmm", the whole rest of the text, in minutes.
std::optional<int> take_difference(std::string_view& text) {
    if (text == "Z" || text == "z") return 0;
    if (text.empty() || (text[0] != '+' && text[0] != '-')) return std::nullopt;
    const int sign = text[0] == '+' ? 1 : -1;
    text.remove_prefix(1);
    const std::optional<int> hours = take_number(text, 2);
    const std::optional<int> minutes = text.empty() ? 0 : take_number(text, 2);
    if (!hours || !minutes || !text.empty() || *hours > 23 || *minutes > 59) return std::nullopt;
    return sign * (*hours * 60 + *minutes);
}

constexpr int days_in_month(int year, int month) {
    constexpr std::array days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return days[static_cast<std::size_t>(month - 1)] + (month == 2 && leap ? 1 : 0);
}

// Days with a fraction that counts forward, as one scale, and back.
double linear(Date date) {
    const double whole = std::trunc(date.days);
    return whole + std::abs(date.days - whole);
}
Date from_linear(double days) {
    const double whole = std::floor(days);
    const double fraction = days - whole;
    return {whole < 0 ? whole - fraction : whole + fraction};
}

}  // namespace

std::optional<Date> try_date(std::string_view text) {
    const std::optional<int> year = take_number(text, 4);
    const std::optional<int> month = take_number(text, 2);
    const std::optional<int> day = take_number(text, 2);
    const std::optional<int> hour = take_number(text, 2);
    if (!year || !month || !day || !hour || *year < 100 || *month < 1 || *month > 12 || *day < 1 ||
        *day > days_in_month(*year, *month) || *hour > 23)
        return std::nullopt;
    double unit = 1.0 / 24;  // of the fraction: of the last part given
    std::optional<int> minute = 0;
    std::optional<int> second = 0;
    if (starts_with_digit(text)) {
        minute = take_number(text, 2);
        unit /= 60;
        if (starts_with_digit(text)) {
            second = take_number(text, 2);
            unit /= 60;
        }
    }
    if (!minute || !second || *minute > 59 || *second > 60) return std::nullopt;
    if (*second == 60) second = 59;
    const std::optional<double> fraction = take_fraction(text);
    if (!fraction) return std::nullopt;
    const std::optional<int> difference = take_difference(text);
    if (!difference) return std::nullopt;

    const Date written = date_from_parts({*year, *month, *day, *hour, *minute, *second});
    const double shift = *fraction * unit - *difference / (24.0 * 60);
    if (shift == 0) return written;
    const Date utc = from_linear(linear(written) + shift);
    const double first = linear(date_from_parts({100, 1, 1, 0, 0, 0}));
    const double last = linear(date_from_parts({9999, 12, 31, 23, 59, 59}));
    if (linear(utc) < first || linear(utc) > last) return std::nullopt;
    return utc;
}

std::string generalized_time(Date date, TimeForm form) {
    const DateParts parts = parts_of(date);
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d%s", parts.year, parts.month,
                  parts.day, parts.hour, parts.minute, parts.second,
                  form == TimeForm::with_fraction ? ".0Z" : "Z");
    return text;
}

}  // namespace orvo::directory
