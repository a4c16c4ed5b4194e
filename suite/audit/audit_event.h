#pragma once

// An event of the audit, and the line that it is.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "platform/values/text.h"

namespace orvo::audit {

struct Event {
    std::chrono::system_clock::time_point time;
    Text event;
    Text result;
    Text user = {};
    Text by = {};
    Text from = {};
    Text server = {};
    Text what = {};
    Text request = {};

    bool operator==(const Event&) const = default;
};

// Of a longer text the audit has so many characters (UTF-16 units) and "…": what somebody types
// into a form does not fill it.
inline constexpr std::size_t longest_text = 512;

// "2026-11-22T12:34:56.789Z": UTC, milliseconds.
std::string time_text(std::chrono::system_clock::time_point time);
// The same, also without milliseconds, without the time of day (then it is midnight) and without
// the "Z"; a blank may stand for the "T".
std::optional<std::chrono::system_clock::time_point> try_time(std::string_view text);

// One JSON object of texts in UTF-8, without a line end; empty texts but for event and result are
// left out:
//
//     {"time":"2026-11-22T12:34:56.789Z","event":"check","result":"wrong","user":"cn=jsmith,…",…}
//
// Control characters and what turns the writing direction are escaped.
std::string json_line(const Event& event);
// What such a line says; nothing for a line that is none. Keys that are not known are passed over.
std::optional<Event> try_parse(std::string_view line);

}  // namespace orvo::audit
