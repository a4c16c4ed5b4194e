#include "platform/linux/scaled.h"

#include <charconv>
#include <limits>

namespace orvo::runtime {

namespace {

constexpr Wide widest = ~Wide{0};
constexpr int most_digits = 39;  // of a Wide
constexpr Wide exact_in_double = Wide{1} << 53;
constexpr double exact_powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int most_exact_power = 22;
constexpr Wide widest_decimal = (Wide{1} << 96) - 1;

// digits ÷ 10^places (places > 0).
Wide divided(Wide digits, bool inexact, int places, Rounding rounding) {
    if (places > most_digits) return 0;
    bool rest = inexact;
    for (; places > 1; --places) {
        rest = rest || digits % 10 != 0;
        digits /= 10;
    }
    auto last = static_cast<int>(digits % 10);
    digits /= 10;
    bool up =
        last > 5 ||
        (last == 5 && (rest || rounding == Rounding::half_away_from_zero || (digits & 1) != 0));
    return digits + (up ? 1 : 0);
}

}  // namespace

bool scaled_to_whole(const Scaled& number, int places, Rounding rounding, Wide& whole) {
    whole = 0;
    if (number.digits == 0) return true;
    int exponent = number.exponent + places;
    if (exponent < 0) {
        whole = divided(number.digits, number.inexact, -exponent, rounding);
        return true;
    }
    whole = number.digits;
    for (; exponent > 0; --exponent) {
        if (whole > widest / 10) return false;
        whole *= 10;
    }
    return true;
}

bool scaled_to_double(const Scaled& number, double& value) {
    int exponent = number.exponent;
    if (number.digits <= exact_in_double && !number.inexact && exponent >= -most_exact_power &&
        exponent <= most_exact_power) {
        // Both operands are exact, so the one operation rounds correctly.
        auto digits = static_cast<double>(static_cast<std::uint64_t>(number.digits));
        value = exponent < 0 ? digits / exact_powers[-exponent] : digits * exact_powers[exponent];
    } else {
        char text[most_digits + 1 + 12];
        char* end = text + most_digits;
        char* begin = write_digits(number.digits, end);
        if (number.inexact) {
            *end++ = '1';
            --exponent;
        }
        *end++ = 'e';
        end = std::to_chars(end, text + sizeof text, exponent).ptr;
        auto [rest, error] = std::from_chars(begin, end, value);
        if (error == std::errc::result_out_of_range) {
            if (exponent > 0) return false;
            value = 0;
        }
    }
    if (number.negative) value = -value;
    return true;
}

Scaled scaled_of(abi::CY currency) {
    auto bits = static_cast<std::uint64_t>(currency.int64);
    return {currency.int64 < 0, currency.int64 < 0 ? 0 - bits : bits, -4, false};
}

Scaled scaled_of(const abi::DECIMAL& decimal) {
    return {decimal.sign != 0, Wide{decimal.Hi32} << 64 | decimal.Lo64, -int{decimal.scale}, false};
}

bool scaled_to_currency(const Scaled& number, Rounding rounding, abi::CY& currency) {
    Wide whole;
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!scaled_to_whole(number, 4, rounding, whole)) return false;
    if (whole > Wide{largest} + (number.negative ? 1 : 0)) return false;
    auto bits = static_cast<std::uint64_t>(whole);
    currency.int64 = static_cast<std::int64_t>(number.negative ? 0 - bits : bits);
    return true;
}

bool scaled_to_decimal(const Scaled& number, abi::DECIMAL& decimal) {
    int places = number.exponent >= 0 ? 0 : number.exponent < -28 ? 28 : -number.exponent;
    for (; places >= 0; --places) {
        Wide whole;
        if (!scaled_to_whole(number, places, Rounding::half_to_even, whole)) continue;
        if (whole > widest_decimal) continue;
        decimal.scale = static_cast<std::uint8_t>(places);
        decimal.sign = number.negative && whole != 0 ? 0x80 : 0;
        decimal.Hi32 = static_cast<std::uint32_t>(whole >> 64);
        decimal.Lo64 = static_cast<std::uint64_t>(whole);
        return true;
    }
    return false;
}

char* write_digits(Wide number, char* end) {
    do {
        *--end = static_cast<char>('0' + static_cast<int>(number % 10));
        number /= 10;
    } while (number != 0);
    return end;
}

}  // namespace orvo::runtime
