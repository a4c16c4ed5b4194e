#include "platform/linux/date_text.h"

#include <array>
#include <ctime>
#include <string>

#include "platform/values/text.h"

namespace orvo::runtime {

namespace {

using namespace std::string_view_literals;

constexpr std::array month_names{u"January"sv,   u"February"sv, u"March"sv,    u"April"sv,
                                 u"May"sv,       u"June"sv,     u"July"sv,     u"August"sv,
                                 u"September"sv, u"October"sv,  u"November"sv, u"December"sv};

struct Number {
    int value;
    int digits;
};

// 1 to 12; 0 for a word that is no month. Months are written out or as their first three letters.
int month_of(std::u16string_view word) {
    for (std::size_t i = 0; i < month_names.size(); ++i)
        if (equal_ignoring_case(word, month_names[i]) ||
            equal_ignoring_case(word, month_names[i].substr(0, 3)))
            return static_cast<int>(i) + 1;
    return 0;
}

int full_year(int year) { return year >= 100 ? year : year < 50 ? year + 2000 : year + 1900; }

bool day_number(int year, int month, int day, int& serial) {
    using namespace std::chrono;
    if (year < 0 || year > 9999 || month < 1 || month > 12 || day < 1 || day > 31) return false;
    year_month_day date{std::chrono::year{full_year(year)},
                        std::chrono::month{static_cast<unsigned>(month)},
                        std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok()) return false;
    serial = static_cast<int>((sys_days{date} - first_day).count());
    return true;
}

bool is_year(const Number& number) { return number.value > 31 || number.digits > 2; }

class DateReader {
public:
    DateReader(std::u16string_view text, int this_year) : rest_(text), this_year_(this_year) {}

    bool read(double& date) {
        for (skip_white(); !rest_.empty(); skip_white())
            if (!read_part()) return false;
        int serial = 0;
        if (has_date() ? !resolve(serial) : !has_time_) return false;
        if (!has_time_) time_ = 0;
        date = serial < 0 ? serial - time_ : serial + time_;
        return true;
    }

private:
    char16_t next() const { return rest_.empty() ? u'\0' : rest_.front(); }
    bool at_digit() const { return next() >= u'0' && next() <= u'9'; }
    bool at_letter() const {
        return (next() >= u'a' && next() <= u'z') || (next() >= u'A' && next() <= u'Z');
    }
    bool at_white() const { return next() == u' ' || (next() >= u'\t' && next() <= u'\r'); }
    void skip_white() {
        while (at_white()) rest_.remove_prefix(1);
    }
    bool take(char16_t c) {
        if (rest_.empty() || next() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    bool has_date() const { return count_ > 0 || month_ > 0; }

    bool read_part() {
        if (at_digit()) {
            Number number;
            if (!take_number(number)) return false;
            skip_white();
            if (next() == u':') return read_time(number.value);
            if (at_letter() && is_half_of_day()) return read_time(number.value);
            return add(number);
        }
        if (at_letter()) {
            if (month_ != 0) return false;
            month_ = month_of(take_word());
            return month_ != 0 && skip_separator();
        }
        return false;
    }

    bool take_number(Number& number) {
        number = {0, 0};
        for (; at_digit(); rest_.remove_prefix(1), ++number.digits) {
            if (number.digits == 4) return false;
            number.value = number.value * 10 + (next() - u'0');
        }
        return true;
    }

    std::u16string_view take_word() {
        std::u16string_view from = rest_;
        while (at_letter()) rest_.remove_prefix(1);
        return from.substr(0, from.size() - rest_.size());
    }

    bool add(const Number& number) {
        if (count_ == 3) return false;
        numbers_[count_++] = number;
        return skip_separator();
    }

    // Between two parts of a date stands "/" or "-", beside a month's name also blanks or a comma.
    // A separator must be followed by something.
    bool skip_separator() {
        skip_white();
        if (take(u'/') || take(u'-')) {
            skip_white();
            joined_ += 1;
            return at_digit() || at_letter();
        }
        if (take(u',')) {
            commas_ += 1;
            skip_white();
            return at_digit() || at_letter();
        }
        return true;
    }

    bool is_half_of_day() {
        std::u16string_view saved = rest_;
        std::u16string_view word = take_word();
        rest_ = saved;
        return equal_ignoring_case(word, u"AM") || equal_ignoring_case(word, u"PM") ||
               equal_ignoring_case(word, u"A") || equal_ignoring_case(word, u"P");
    }

    bool read_time(int hour) {
        if (has_time_) return false;
        has_time_ = true;
        int parts[2] = {0, 0};
        for (int& part : parts) {
            skip_white();
            if (!take(u':')) break;
            skip_white();
            Number number;
            if (!at_digit() || !take_number(number) || number.value > 59) return false;
            part = number.value;
        }
        skip_white();
        if (at_letter() && is_half_of_day()) {
            bool afternoon = next() == u'p' || next() == u'P';
            take_word();
            if (hour > 12) return false;
            hour = hour % 12 + (afternoon ? 12 : 0);
        }
        if (hour > 23) return false;
        time_ = (hour * 3600 + parts[0] * 60 + parts[1]) / 86400.0;
        return rest_.empty() || at_digit() || at_letter();
    }

    bool resolve(int& serial) const { return month_ != 0 ? named(serial) : numeric(serial); }

    bool named(int& serial) const {
        const auto& [a, b, c] = numbers_;
        if (count_ == 1)
            return is_year(a) ? day_number(a.value, month_, 1, serial)
                              : day_number(this_year_, month_, a.value, serial);
        if (count_ != 2) return false;
        if (is_year(a)) return day_number(a.value, month_, b.value, serial);
        return day_number(b.value, month_, a.value, serial);
    }

    bool numeric(int& serial) const {
        const auto& [a, b, c] = numbers_;
        // Numbers without a month's name are joined, each to the next.
        if (commas_ != 0 || joined_ != count_ - 1) return false;
        if (count_ == 2) {
            if (is_year(b)) return day_number(b.value, a.value, 1, serial);
            if (is_year(a)) return day_number(a.value, b.value, 1, serial);
            return day_number(this_year_, a.value, b.value, serial) ||
                   day_number(this_year_, b.value, a.value, serial);
        }
        if (count_ != 3) return false;
        if (is_year(a))
            return day_number(a.value, b.value, c.value, serial) ||
                   day_number(a.value, c.value, b.value, serial);
        return day_number(c.value, a.value, b.value, serial) ||
               day_number(c.value, b.value, a.value, serial) ||
               (!is_year(c) && day_number(a.value, b.value, c.value, serial));
    }

    std::u16string_view rest_;
    int this_year_;
    std::array<Number, 3> numbers_{};
    int count_ = 0;
    int joined_ = 0;
    int commas_ = 0;
    int month_ = 0;
    bool has_time_ = false;
    double time_ = 0;
};

}  // namespace

bool read_date(std::u16string_view text, int this_year, double& date) {
    return DateReader(text, this_year).read(date);
}

int current_year() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local.tm_year + 1900;
}

}  // namespace orvo::runtime
