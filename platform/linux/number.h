#pragma once

// Numbers between two types. Any thread; nothing is raised.

#include <string_view>

#include "platform/linux/scaled.h"
#include "platform/system/automation.h"

namespace orvo::runtime {

// A number on its way from one type to another, as exact as its source: a binary fraction where the
// source is one, otherwise an exact decimal.
struct Number {
    bool is_real = false;
    double real = 0;
    Scaled exact;

    // What the source's type adds to the rules.
    abi::VARTYPE source = abi::VT_EMPTY;
    int pattern_bits = 0;  // of a text such as "&HFF"; see NumberText
};

// The number that a variant of a simple, numeric type holds; Empty is 0. `value` is no reference.
// False for any other type.
bool number_of(const abi::VARIANT& value, Number& number);

// The number that a text says. False when it says none.
bool number_of(std::u16string_view text, char16_t currency_sign, Number& number);

// The number as a value of a numeric type, texts excluded, rounded to even where it must be
// rounded; DISP_E_OVERFLOW when the type cannot hold it.
abi::HRESULT put_number(const Number& number, abi::VARTYPE type, abi::VARIANT& out);

}  // namespace orvo::runtime
