#include "host/engine/written_date.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

namespace orvo::script {
namespace {

constexpr std::string_view months[] = {"january",   "february", "march",    "april",
                                       "may",       "june",     "july",     "august",
                                       "september", "october",  "november", "december"};
constexpr std::string_view days[] = {"sunday",   "monday", "tuesday", "wednesday",
                                     "thursday", "friday", "saturday"};
constexpr std::size_t shortest_name = 3;

struct Zone {
    std::string_view name;
    int hours;
};
constexpr Zone zones[] = {{"gmt", 0},  {"utc", 0},  {"ut", 0},   {"z", 0},
                          {"est", -5}, {"edt", -4}, {"cst", -6}, {"cdt", -5},
                          {"mst", -7}, {"mdt", -6}, {"pst", -8}, {"pdt", -7}};

constexpr std::int64_t days_of_an_era = 146097;  // 400 years
constexpr std::int64_t day_of_1970 = 719468;     // from the first of March of the year 0

bool is_leap(long year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int days_of(long year, int month) {
    if (month == 2) return is_leap(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// Years begin in March here, so that the leap day is the last one.
std::int64_t days_since_1970(long year, int month, int day) {
    const std::int64_t shifted = month > 2 ? year : year - 1;
    const std::int64_t era = (shifted >= 0 ? shifted : shifted - 399) / 400;
    const std::int64_t of_era = shifted - era * 400;
    const std::int64_t of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * days_of_an_era + of_era * 365 + of_era / 4 - of_era / 100 + of_year - day_of_1970;
}

class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    bool is_at_end() const { return at_ == text_.size(); }
    char peek(std::size_t ahead = 0) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }
    bool take(char c) {
        if (peek() != c || is_at_end()) return false;
        ++at_;
        return true;
    }
    bool take_any_of(std::string_view set) {
        if (is_at_end() || set.find(peek()) == set.npos) return false;
        ++at_;
        return true;
    }
    std::size_t digits() const {
        std::size_t count = 0;
        while (peek(count) >= '0' && peek(count) <= '9') ++count;
        return count;
    }
    // Exactly so many digits.
    bool take_number(std::size_t count, int& value) {
        if (digits() != count) return false;
        value = static_cast<int>(*take_number());
        return true;
    }
    // At most nine digits.
    std::optional<long> take_number() {
        const std::size_t count = digits();
        if (count == 0 || count > 9) return std::nullopt;
        long value = 0;
        for (std::size_t i = 0; i < count; ++i) value = value * 10 + (text_[at_++] - '0');
        return value;
    }
    static bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
    // In lower case, and no longer than a string holds without asking for memory.
    std::string take_word() {
        std::string word;
        for (; is_letter(peek()); ++at_)
            if (word.size() < word.capacity()) word.push_back(static_cast<char>(peek() | 0x20));
        return word;
    }
    // The digits behind a point, as thousandths.
    bool take_fraction(int& thousandths) {
        if (digits() == 0) return false;
        thousandths = 0;
        for (int unit = 100; peek() >= '0' && peek() <= '9'; unit /= 10)
            thousandths += unit * (text_[at_++] - '0');
        return true;
    }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

bool is_possible(const WrittenDate& date) {
    if (date.month < 1 || date.month > 12 || date.day < 1 ||
        date.day > days_of(date.year, date.month) || date.minute > 59 || date.second > 59)
        return false;
    return date.hour < 24 ||
           (date.hour == 24 && date.minute == 0 && date.second == 0 && date.millisecond == 0);
}

// [+|-]hh[:]mm
bool take_offset(Reader& reader, WrittenDate& date) {
    const bool west = reader.peek() == '-';
    if (!reader.take_any_of("+-")) return false;
    int hours = 0;
    int minutes = 0;
    if (reader.digits() == 4) {
        reader.take_number(4, hours);
        minutes = hours % 100;
        hours /= 100;
    } else {
        const std::size_t count = reader.digits();
        if (count > 2 || !reader.take_number(count, hours) || count == 0) return false;
        if (reader.take(':') && !reader.take_number(2, minutes)) return false;
    }
    if (hours > 23 || minutes > 59) return false;
    const int offset = hours * 60 + minutes;
    date.zone = west ? -offset : offset;
    return true;
}

// YYYY[-MM[-DD]][(T| )hh:mm[:ss[.fraction]][zone]], years of six digits with a sign.
std::optional<WrittenDate> read_iso(std::string_view text) {
    Reader reader(text);
    WrittenDate date;
    int year = 0;
    const char sign = reader.peek();
    const bool is_long = reader.take_any_of("+-");
    if (!reader.take_number(is_long ? 6 : 4, year)) return std::nullopt;
    if (sign == '-' && year == 0) return std::nullopt;
    date.year = sign == '-' ? -year : year;
    if (reader.take('-') && (!reader.take_number(2, date.month) ||
                             (reader.take('-') && !reader.take_number(2, date.day))))
        return std::nullopt;
    if (reader.is_at_end()) {
        date.zone = 0;
    } else {
        if (!reader.take_any_of("Tt ") || !reader.take_number(2, date.hour) || !reader.take(':') ||
            !reader.take_number(2, date.minute))
            return std::nullopt;
        if (reader.take(':') && (!reader.take_number(2, date.second) ||
                                 (reader.take('.') && !reader.take_fraction(date.millisecond))))
            return std::nullopt;
        if (reader.take_any_of("Zz"))
            date.zone = 0;
        else if (!reader.is_at_end() && !take_offset(reader, date))
            return std::nullopt;
        if (!reader.is_at_end()) return std::nullopt;
    }
    if (!is_possible(date)) return std::nullopt;
    return date;
}

// All other forms: names, numbers and signs in nearly any order.
class LooseReader {
public:
    explicit LooseReader(std::string_view text) : reader_(text) {}

    std::optional<WrittenDate> run() {
        while (!reader_.is_at_end())
            if (!take_part()) return std::nullopt;
        if (!has_month_ || !has_year_) return std::nullopt;
        if (is_afternoon_) {
            if (!has_time_ || date_.hour < 1 || date_.hour > 12) return std::nullopt;
            date_.hour = date_.hour % 12 + (*is_afternoon_ ? 12 : 0);
        }
        if (date_.hour > 23 || !is_possible(date_)) return std::nullopt;
        return date_;
    }

private:
    bool take_part() {
        if (reader_.take_any_of(" \t\r\n\f\v,")) return true;
        if (reader_.peek() == '(') return take_comment();
        if (Reader::is_letter(reader_.peek())) return take_word();
        if (reader_.digits() > 0) return take_number();
        // An offset, behind the time or behind the name of its zone.
        const bool has_offset = date_.zone && *date_.zone != 0;
        return has_time_ && !has_offset && take_offset(reader_, date_);
    }

    bool take_comment() {
        int depth = 0;
        do {
            if (reader_.is_at_end()) return false;
            if (reader_.take('('))
                ++depth;
            else if (reader_.take(')'))
                --depth;
            else
                reader_.take(reader_.peek());
        } while (depth > 0);
        return true;
    }

    static bool begins(std::string_view name, std::string_view word) {
        return word.size() >= shortest_name && name.starts_with(word);
    }

    bool take_month(std::string_view word) {
        const auto month =
            std::ranges::find_if(months, [&](std::string_view name) { return begins(name, word); });
        if (month == std::end(months) || has_month_) return false;
        date_.month = static_cast<int>(month - std::begin(months)) + 1;
        return has_month_ = true;
    }

    bool take_word() {
        const std::string word = reader_.take_word();
        reader_.take('.');
        if (word == "am" || word == "pm") {
            if (is_afternoon_) return false;
            is_afternoon_ = word == "pm";
            return true;
        }
        for (const Zone& zone : zones) {
            if (zone.name != word) continue;
            if (date_.zone) return false;
            date_.zone = zone.hours * 60;
            return true;
        }
        for (std::string_view name : days)
            if (begins(name, word)) return true;
        return take_month(word);
    }

    bool take_number() {
        const std::size_t digits = reader_.digits();
        const std::optional<long> number = reader_.take_number();
        if (!number) return false;
        if (reader_.peek() == ':') return take_time(*number);
        if (reader_.peek() == '/' || (reader_.peek() == '-' && !has_time_)) {
            if (reader_.peek() == '-' && Reader::is_letter(reader_.peek(1)))
                return take_old_form(*number);
            return take_numbers(*number, digits);
        }
        if (!has_day_ && digits <= 2) {
            date_.day = static_cast<int>(*number);
            return has_day_ = true;
        }
        return put_year(*number, digits);
    }

    bool take_time(long hour) {
        if (has_time_ || hour > 23) return false;
        has_time_ = true;
        date_.hour = static_cast<int>(hour);
        reader_.take(':');
        if (reader_.digits() == 0) return true;
        if (!take_two(date_.minute)) return false;
        if (!reader_.take(':')) return true;
        if (!take_two(date_.second)) return false;
        return !reader_.take('.') || reader_.take_fraction(date_.millisecond);
    }

    bool take_two(int& value) {
        const std::size_t digits = reader_.digits();
        return digits >= 1 && digits <= 2 && reader_.take_number(digits, value);
    }

    // 06-Nov-94
    bool take_old_form(long day) {
        if (has_day_ || !reader_.take('-') || !take_month(reader_.take_word()) ||
            !reader_.take('-'))
            return false;
        has_day_ = true;
        date_.day = static_cast<int>(std::min(day, 99L));
        const std::size_t digits = reader_.digits();
        const std::optional<long> year = reader_.take_number();
        if (!year) return false;
        return put_year(digits == 2 && *year < 70 ? *year + 2000 : *year, digits == 2 ? 4 : digits,
                        *year >= 70 && digits == 2);
    }

    // 1/2/2003 and 2003/1/2, or with "-" between.
    bool take_numbers(long first, std::size_t digits) {
        if (has_month_ || has_day_ || has_year_) return false;
        const char sign = reader_.peek();
        reader_.take(sign);
        const std::size_t second_digits = reader_.digits();
        const std::optional<long> second = reader_.take_number();
        if (!second || second_digits > 2 || !reader_.take(sign)) return false;
        const std::size_t third_digits = reader_.digits();
        const std::optional<long> third = reader_.take_number();
        if (!third) return false;
        const bool begins_with_year = digits > 2;
        if (begins_with_year && third_digits > 2) return false;
        has_month_ = has_day_ = true;
        date_.month = static_cast<int>(begins_with_year ? *second : first);
        date_.day = static_cast<int>(begins_with_year ? *third : *second);
        return begins_with_year ? put_year(first, digits) : put_year(*third, third_digits);
    }

    bool put_year(long year, std::size_t digits, bool is_of_1900 = false) {
        if (has_year_) return false;
        date_.year = digits <= 2 || is_of_1900 ? year + 1900 : year;
        return has_year_ = true;
    }

    Reader reader_;
    WrittenDate date_;
    bool has_year_ = false;
    bool has_month_ = false;
    bool has_day_ = false;
    bool has_time_ = false;
    std::optional<bool> is_afternoon_;
};

}  // namespace

double WrittenDate::milliseconds() const {
    const auto whole_days = static_cast<double>(days_since_1970(year, month, day));
    return (((whole_days * 24 + hour) * 60 + minute) * 60 + second) * 1000 + millisecond;
}

std::optional<WrittenDate> read_date(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n\f\v";
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(begin);
    text.remove_suffix(text.size() - (text.find_last_not_of(blanks) + 1));
    if (const auto date = read_iso(text)) return date;
    return LooseReader(text).run();
}

HttpDate http_date(double milliseconds) {
    const auto seconds = static_cast<std::int64_t>(std::floor(milliseconds / 1000));
    const std::int64_t day = (seconds >= 0 ? seconds : seconds - 86399) / 86400;
    const std::int64_t time = seconds - day * 86400;
    const std::int64_t shifted = day + day_of_1970;
    const std::int64_t era =
        (shifted >= 0 ? shifted : shifted - days_of_an_era + 1) / days_of_an_era;
    const std::int64_t of_era = shifted - era * days_of_an_era;
    const std::int64_t years =
        (of_era - of_era / 1460 + of_era / 36524 - of_era / (days_of_an_era - 1)) / 365;
    const std::int64_t of_year = of_era - (365 * years + years / 4 - years / 100);
    const std::int64_t month = (5 * of_year + 2) / 153;  // March is 0
    const auto weekday = static_cast<std::size_t>(((day + 4) % 7 + 7) % 7);
    const auto name = static_cast<std::size_t>((month + 2) % 12);
    const auto year = static_cast<long>(years + era * 400 + (month >= 10 ? 1 : 0));
    const auto shown = [](std::string_view word) {
        std::string text(word.substr(0, 3));
        text[0] = static_cast<char>(text[0] & ~0x20);
        return text;
    };
    HttpDate date{};
    std::snprintf(date.text, sizeof date.text, "%s, %02d %s %s%04ld %02d:%02d:%02d GMT",
                  shown(days[weekday]).c_str(),
                  static_cast<int>(of_year - (153 * month + 2) / 5 + 1),
                  shown(months[name]).c_str(), year < 0 ? "-" : "", std::abs(year),
                  static_cast<int>(time / 3600), static_cast<int>(time / 60 % 60),
                  static_cast<int>(time % 60));
    return date;
}

}  // namespace orvo::script
