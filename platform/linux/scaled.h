#pragma once

// Exact decimal numbers, between text, currency, decimal and whole numbers: no detour over binary
// fractions, so nothing is rounded twice. Plain values; any thread, nothing is raised.

#include <cstdint>

#include "platform/system/automation.h"

namespace orvo::runtime {

__extension__ typedef unsigned __int128 Wide;

enum class Rounding { half_to_even, half_away_from_zero };

// ±digits × 10^exponent. `inexact` tells that further digits followed which did not fit.
struct Scaled {
    bool negative = false;
    Wide digits = 0;
    int exponent = 0;
    bool inexact = false;
};

// |number| × 10^places, rounded to a whole number. False when it has more than 128 bits.
bool scaled_to_whole(const Scaled& number, int places, Rounding rounding, Wide& whole);

// The nearest double. False when it is larger than any.
bool scaled_to_double(const Scaled& number, double& value);

Scaled scaled_of(abi::CY currency);
Scaled scaled_of(const abi::DECIMAL& decimal);

// False on overflow. A decimal keeps as many places (28 at most) as its 96 bits allow.
bool scaled_to_currency(const Scaled& number, Rounding rounding, abi::CY& currency);
bool scaled_to_decimal(const Scaled& number, abi::DECIMAL& decimal);

// Writes a Wide's decimal digits in front of `end`; answers where they begin.
char* write_digits(Wide number, char* end);

}  // namespace orvo::runtime
