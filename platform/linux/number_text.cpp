#include "platform/linux/number_text.h"

#include <bit>
#include <cstdint>

namespace orvo::runtime {

namespace {

constexpr int largest_exponent = 100'000;

bool is_white(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\xA0'; }
bool is_digit(char16_t c) { return c >= u'0' && c <= u'9'; }

int digit_value(char16_t c) {
    if (is_digit(c)) return c - u'0';
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    return 16;
}

class NumberReader {
public:
    NumberReader(std::u16string_view text, char16_t currency_sign, NumberText& result)
        : rest_(text), currency_sign_(currency_sign), result_(result) {}

    bool read() {
        skip_white();
        if (take(u'&')) return read_pattern() && finish();
        read_front();
        if (!read_digits() || !read_exponent()) return false;
        read_back();
        result_.number.negative = negative_;
        return parentheses_ != open && finish();
    }

private:
    enum Parentheses { none, open, closed };

    char16_t next() const { return rest_.empty() ? u'\0' : rest_.front(); }
    bool take(char16_t c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    void skip_white() {
        while (!rest_.empty() && is_white(rest_.front())) rest_.remove_prefix(1);
    }
    bool finish() {
        skip_white();
        return rest_.empty();
    }

    bool take_sign() {
        if (signed_) return false;
        if (take(u'-'))
            negative_ = true;
        else if (!take(u'+'))
            return false;
        return signed_ = true;
    }
    bool take_currency() {
        if (money_ || currency_sign_ == u'\0' || !take(currency_sign_)) return false;
        return money_ = true;
    }

    void read_front() {
        for (;;) {
            if (take_sign() || take_currency()) continue;
            if (signed_ || parentheses_ != none || !take(u'(')) return;
            parentheses_ = open;
            signed_ = negative_ = true;
        }
    }

    void read_back() {
        for (;;) {
            skip_white();
            if (take_sign() || take_currency()) continue;
            if (parentheses_ != open || !take(u')')) return;
            parentheses_ = closed;
        }
    }

    bool read_digits() {
        bool any = false;
        bool fraction = false;
        for (; !rest_.empty(); rest_.remove_prefix(1)) {
            char16_t c = rest_.front();
            if (is_digit(c)) {
                any = true;
                add_digit(c - u'0', fraction);
            } else if (c == u'.' && !fraction) {
                fraction = true;
            } else if (c != u',' || !any || fraction) {
                break;
            }
        }
        return any;
    }

    void add_digit(int digit, bool fraction) {
        Scaled& number = result_.number;
        constexpr Wide room = ~Wide{0} / 10 - 1;
        if (number.digits < room) {
            number.digits = number.digits * 10 + static_cast<unsigned>(digit);
            if (fraction) --number.exponent;
        } else {
            if (digit != 0) number.inexact = true;
            if (!fraction) ++number.exponent;
        }
    }

    bool read_exponent() {
        if (!take(u'e') && !take(u'E')) return true;
        bool negative = take(u'-');
        if (!negative) take(u'+');
        if (!is_digit(next())) return false;
        int exponent = 0;
        for (; is_digit(next()); rest_.remove_prefix(1))
            if (exponent < largest_exponent) exponent = exponent * 10 + (next() - u'0');
        result_.number.exponent += negative ? -exponent : exponent;
        return true;
    }

    bool read_pattern() {
        int shift = take(u'H') || take(u'h') ? 4 : take(u'O') || take(u'o') ? 3 : 0;
        if (shift == 0 || digit_value(next()) >= 1 << shift) return false;
        std::uint64_t pattern = 0;
        for (; digit_value(next()) < 1 << shift; rest_.remove_prefix(1)) {
            if (pattern >> (64 - shift) != 0) return false;
            pattern = pattern << shift | static_cast<unsigned>(digit_value(next()));
        }
        result_.number.digits = pattern;
        result_.bits = pattern == 0 ? 1 : std::bit_width(pattern);
        return true;
    }

    std::u16string_view rest_;
    char16_t currency_sign_;
    NumberText& result_;
    bool signed_ = false;
    bool negative_ = false;
    bool money_ = false;
    Parentheses parentheses_ = none;
};

}  // namespace

bool read_number(std::u16string_view text, char16_t currency_sign, NumberText& result) {
    result = {};
    return NumberReader(text, currency_sign, result).read();
}

}  // namespace orvo::runtime
