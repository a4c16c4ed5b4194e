#include "platform/linux/number_format.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace orvo::runtime {

namespace {

// Enough digits to tell a tie from a number that only comes close to one.
constexpr int deciding_digits = 60;

struct Digits {
    char text[80];
    int exponent;  // of the first digit
};

// `count` digits after the first, rounded by to_chars (ties to even).
Digits scientific(double magnitude, int count) {
    char written[96];
    char* end = std::to_chars(written, written + sizeof written, magnitude,
                              std::chars_format::scientific, count)
                    .ptr;
    Digits digits{};
    digits.text[0] = written[0];
    std::memcpy(digits.text + 1, written + 2, static_cast<std::size_t>(count));
    const char* exponent = written + 3 + count;  // behind "d.ddde"
    if (*exponent == '+') ++exponent;
    std::from_chars(exponent, end, digits.exponent);
    return digits;
}

// `count` significant digits, ties away from zero; cut behind the last digit that is not 0.
Digits significant(double magnitude, int count) {
    // One digit more than wanted decides, unless it is a 5 that may itself have been rounded.
    Digits digits = scientific(magnitude, count);
    bool up = digits.text[count] > '5';
    if (digits.text[count] == '5') {
        digits = scientific(magnitude, deciding_digits);
        up = digits.text[count] >= '5';
    }
    int last = count - 1;
    if (up) {
        while (last >= 0 && digits.text[last] == '9') --last;
        if (last < 0) {
            digits.text[0] = '1';
            ++digits.exponent;
            last = 0;
        } else {
            ++digits.text[last];
        }
    }
    while (last > 0 && digits.text[last] == '0') --last;
    digits.text[last + 1] = '\0';
    return digits;
}

char* put(char* to, const char* text, std::size_t length) {
    std::memcpy(to, text, length);
    return to + length;
}

char* put_zeros(char* to, int count) {
    if (count > 0) std::memset(to, '0', static_cast<std::size_t>(count));
    return to + (count > 0 ? count : 0);
}

char* put_exponent(char* to, int exponent) {
    *to++ = 'E';
    *to++ = exponent < 0 ? '-' : '+';
    int size = std::abs(exponent);
    if (size < 10) *to++ = '0';
    return std::to_chars(to, to + 4, size).ptr;
}

// Digits with the point behind the first `whole` of them; fewer than one: zeros in front.
char* put_pointed(char* to, const char* digits, int length, int whole) {
    if (whole <= 0) {
        to = put(to, "0.", 2);
        to = put_zeros(to, -whole);
        return put(to, digits, static_cast<std::size_t>(length));
    }
    int before = length < whole ? length : whole;
    to = put(to, digits, static_cast<std::size_t>(before));
    to = put_zeros(to, whole - before);
    if (length > whole) {
        *to++ = '.';
        to = put(to, digits + whole, static_cast<std::size_t>(length - whole));
    }
    return to;
}

std::string_view written(const NumberBuffer& buffer, const char* end) {
    return {buffer.text, static_cast<std::size_t>(end - buffer.text)};
}

}  // namespace

std::string_view format_whole(bool negative, std::uint64_t magnitude, NumberBuffer& buffer) {
    char* to = buffer.text;
    if (negative && magnitude != 0) *to++ = '-';
    return written(buffer, std::to_chars(to, buffer.text + sizeof buffer.text, magnitude).ptr);
}

std::string_view format_real(double number, int digits, NumberBuffer& buffer) {
    char* to = buffer.text;
    double magnitude = std::fabs(number);
    if (std::isnan(number)) return "1.#QNAN";
    if (std::isinf(number)) return number < 0 ? "-1.#INF" : "1.#INF";
    double limit = digits == 7 ? 1e7 : 1e15;
    if (magnitude < limit && magnitude == std::trunc(magnitude))
        return format_whole(number < 0, static_cast<std::uint64_t>(magnitude), buffer);
    if (number < 0) *to++ = '-';
    Digits found = significant(magnitude, digits);
    int length = static_cast<int>(std::strlen(found.text));
    if (found.exponent >= -4 && found.exponent < digits)
        return written(buffer, put_pointed(to, found.text, length, found.exponent + 1));
    to = put_pointed(to, found.text, length, 1);
    return written(buffer, put_exponent(to, found.exponent));
}

std::string_view format_scaled(const Scaled& number, NumberBuffer& buffer) {
    char digits[40];
    char* end = digits + sizeof digits;
    char* begin = write_digits(number.digits, end);
    int exponent = number.exponent;
    while (exponent < 0 && end - begin > 1 && end[-1] == '0') {
        --end;
        ++exponent;
    }
    char* to = buffer.text;
    if (number.digits == 0) {
        *to++ = '0';
        return written(buffer, to);
    }
    if (number.negative) *to++ = '-';
    int length = static_cast<int>(end - begin);
    return written(buffer, put_pointed(to, begin, length, length + exponent));
}

Scaled rounded_to_digits(double number, int digits) {
    Scaled result;
    if (number == 0) return result;
    Digits found = significant(std::fabs(number), digits);
    int length = static_cast<int>(std::strlen(found.text));
    for (int i = 0; i < length; ++i)
        result.digits = result.digits * 10 + static_cast<unsigned>(found.text[i] - '0');
    result.exponent = found.exponent - (length - 1);
    result.negative = number < 0;
    return result;
}

}  // namespace orvo::runtime
