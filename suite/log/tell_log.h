#pragma once

// How the suite's other parts write to the log, whatever component that is.

#include <cstdint>

#include "platform/values/text.h"

namespace orvo {

// An entry; `level` is log_level_error or log_level_note. Nothing where it cannot be written:
// there is nobody left to tell.
void tell_log(const Text& source, const Text& message, std::int32_t level) noexcept;

}  // namespace orvo
