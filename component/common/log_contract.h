#pragma once

// The suite's log component ("Quendra.Log"), as the component sees it.

#include "platform/interfaces/interface.h"
#include "platform/values/variant.h"

namespace orvo {

// level: 0 an error, 1 a note ("Not an actual error"). The results are discarded by callers, and
// what a log raises never takes the place of what was to be logged. The component makes an object
// for each entry, on the thread that reports.
class Log {
public:
    virtual Variant LogMessage(Text& source, Text& message, std::int32_t& level) = 0;
    virtual Variant LogMessageAlternate(Text& source, Text& message, std::int32_t& level) = 0;

protected:
    ~Log() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Log> = describe<Log>(
    "IQuendraLog", "0621d2f8-6009-4f66-a855-2f8d3a15d601",
    about("The log that the component writes to."),
    reserved(1, 4),
    method<&Log::LogMessage>("LogMessage", "source", "message", "level")
        .help("Writes an entry: level 0 is an error, 1 a note."),
    method<&Log::LogMessageAlternate>("LogMessageAlternate", "source", "message", "level")
        .help("Writes an entry, as LogMessage does."));
// clang-format on

}  // namespace orvo
