#pragma once

// Numbers as text, the same in every locale: "." before the fraction, no grouping. Any thread;
// nothing fails. What is answered is a part of the caller's buffer.

#include <cstdint>
#include <string_view>

#include "platform/linux/scaled.h"

namespace orvo::runtime {

// Room for every number that these functions write.
struct NumberBuffer {
    char text[64];
};

std::string_view format_whole(bool negative, std::uint64_t magnitude, NumberBuffer& buffer);

// As C's %.*G writes it, with a tie of the last digit rounded away from zero: 15 digits for a
// double, 7 for a float. A number that is none reads "1.#QNAN", an endless one "1.#INF".
std::string_view format_real(double number, int digits, NumberBuffer& buffer);

// Without exponent and without trailing zeros of the fraction.
std::string_view format_scaled(const Scaled& number, NumberBuffer& buffer);

// The number as that many significant digits, rounded as above; finite numbers only.
Scaled rounded_to_digits(double number, int digits);

}  // namespace orvo::runtime
