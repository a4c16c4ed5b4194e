#pragma once

// The text of one log entry, without its time stamp.

#include <string>

#include "platform/values/text.h"

namespace orvo {

// The levels that the callers know; every other number is taken for a note and shown.
inline constexpr std::int32_t log_level_error = 0;
inline constexpr std::int32_t log_level_note = 1;

// Which of the two operations wrote the entry.
enum class LogChannel { main, alternate };

// In UTF-8, without a line end:
//
//     error OrvoMembership.User.BindAs: a message of one line
//     note [alternate] OrvoMembership.Validator.IObjectControl_Activate:
//         ERROR 0x0
//          METHOD: OrvoMembership.Validator.IObjectControl_Activate
//     note(7) …
//
// A message of several lines (CR LF or LF) starts on a line of its own and is indented by four
// blanks, so that only an entry's first line begins with a time stamp, whatever the message holds;
// empty lines at its ends are left out. Other control characters but the tab, and the characters
// that break lines or turn the writing direction in a viewer, are shown as \u001B; a backslash is
// itself. The source is kept on one line by the same rule.
std::string log_entry(LogChannel channel, std::int32_t level, TextView source, TextView message);

// Whether a viewer is not to be given the character itself: control characters but the tab, and
// what breaks lines or turns the writing direction.
bool is_shown_by_code(char16_t unit);

}  // namespace orvo
