#pragma once

// Any thread; nothing is raised.

#include <string_view>

#include "platform/linux/scaled.h"

namespace orvo::runtime {

// What a text says as a number. `bits` is 0 for a decimal number; for "&HFF" and "&O17" it is the
// width of the pattern in bits (leading zeros not counted), so that it may stand for a negative
// number of the same width.
struct NumberText {
    Scaled number;
    int bits = 0;
};

// Reads a number as Automation does in US English, the same in every locale: outer white space, a
// sign before or behind or parentheses for a negative number, a currency sign, "," anywhere between
// the digits before the point, an exponent with E. `currency_sign` is u'\0' where there is none.
// False when the text is not a number.
bool read_number(std::u16string_view text, char16_t currency_sign, NumberText& result);

}  // namespace orvo::runtime
