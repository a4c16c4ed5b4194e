#include "host/web/messages/request_conditions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string>

#include "host/web/messages/cookies.h"
#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

constexpr std::array<std::string_view, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Of a number that is larger than that the largest one.
std::optional<std::uint64_t> try_number(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || end != text.data() + text.size()) return std::nullopt;
    if (error == std::errc::result_out_of_range) return std::numeric_limits<std::uint64_t>::max();
    if (error != std::errc()) return std::nullopt;
    return number;
}

std::string_view trimmed_blanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

// The next of a list's elements; the list goes on behind its comma.
std::string_view take_element(std::string_view& list, char separator = ',') {
    const auto end = std::min(list.find(separator), list.size());
    const auto element = trimmed_blanks(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
    return element;
}

}  // namespace

std::optional<std::chrono::sys_seconds> try_http_date(std::string_view text) {
    // Where the parts of "Sun, 06 Nov 1994 08:49:37 GMT" stand.
    if (text.size() != 29 || text.substr(3, 2) != ", " || text.substr(25) != " GMT" ||
        text[7] != ' ' || text[11] != ' ' || text[16] != ' ' || text[19] != ':' || text[22] != ':')
        return std::nullopt;
    const auto number = [&](std::size_t place, std::size_t count) {
        return try_number(text.substr(place, count));
    };
    const auto month = std::find(months.begin(), months.end(), text.substr(8, 3));
    const auto day = number(5, 2), year = number(12, 4), hour = number(17, 2),
               minute = number(20, 2), second = number(23, 2);
    if (month == months.end() || !day || !year || !hour || !minute || !second || *hour > 23 ||
        *minute > 59 || *second > 60)
        return std::nullopt;
    const std::chrono::year_month_day date(
        std::chrono::year(static_cast<int>(*year)),
        std::chrono::month(static_cast<unsigned>(month - months.begin()) + 1),
        std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok()) return std::nullopt;
    return std::chrono::sys_days(date) + std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
           std::chrono::seconds(*second);
}

std::string http_date_of(std::chrono::sys_seconds time) {
    constexpr double unix_epoch = 25569;  // in days of our dates
    return http_date(
        Date{unix_epoch + static_cast<double>(time.time_since_epoch().count()) / 86400});
}

bool has_tag(std::string_view tags, std::string_view tag) {
    while (!tags.empty()) {
        std::string_view element = take_element(tags);
        if (element == "*") return true;
        if (element.starts_with("W/")) element.remove_prefix(2);
        if (element == tag) return true;
    }
    return false;
}

bool accepts_gzip(std::string_view encodings) {
    bool is_any = false;
    while (!encodings.empty()) {
        std::string_view element = take_element(encodings);
        const auto name = take_element(element, ';');
        element = trimmed_blanks(element);
        const bool is_gzip = equal_ascii_ignoring_case(name, "gzip");
        if (!is_gzip && name != "*") continue;
        // "q=0" and "q=0.000" forbid it.
        const bool is_allowed = !equal_ascii_ignoring_case(element.substr(0, 3), "q=0") ||
                                element.substr(3).find_first_not_of(".0") != element.npos;
        if (is_gzip) return is_allowed;
        is_any = is_allowed;
    }
    return is_any;
}

std::optional<ByteRange> try_range(std::string_view range, std::uint64_t size) {
    if (!equal_ascii_ignoring_case(range.substr(0, 6), "bytes=")) return std::nullopt;
    range.remove_prefix(6);
    const auto dash = range.find('-');
    if (dash == range.npos) return std::nullopt;
    const auto before = trimmed_blanks(range.substr(0, dash));
    const auto after = trimmed_blanks(range.substr(dash + 1));
    const auto first = try_number(before), last = try_number(after);
    if ((!first && !before.empty()) || (!last && !after.empty()) || (!first && !last))
        return std::nullopt;
    if (!first) return ByteRange{size - std::min(*last, size), std::min(*last, size)};
    if (last && *last < *first) return std::nullopt;
    if (*first >= size) return ByteRange{*first, 0};
    return ByteRange{*first, std::min(last.value_or(size - 1), size - 1) - *first + 1};
}

}  // namespace orvo::web
