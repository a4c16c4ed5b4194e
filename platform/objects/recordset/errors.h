#pragma once

// The error numbers that record sets and streams raise, with the platform's texts. Any thread.

#include "platform/values/failure.h"

namespace orvo::recordset {

enum Error : std::int32_t {
    wrong_arguments = 3001,
    opening_failed = 3002,
    write_failed = 3004,
    no_current_record = 3021,
    not_allowed_here = 3219,
    not_capable = 3251,
    no_such_item = 3265,
    duplicate_item = 3367,
    wrong_type = 3421,
    is_closed = 3704,
    is_open = 3705,
    no_connection = 3709,
};

// A field took no value: it does not fit, or is missing where there must be one.
inline constexpr std::int32_t field_failed = error_number(0x80040E21);

}  // namespace orvo::recordset
