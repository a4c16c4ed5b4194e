#pragma once

// The one place where log entries leave the process.

#include <chrono>
#include <memory>
#include <string_view>

#include "platform/values/text.h"
#include "suite/log/log_target.h"

namespace orvo {

namespace log_error {
// The log file, or its folder, cannot be made, opened, written or renamed (Automation's own number
// for trouble with a path or file).
inline constexpr std::int32_t file_not_writable = 75;
}  // namespace log_error

inline constexpr TextView log_source = u"Quendra.Log";

// Writes entries, each behind its time stamp (local time, 2024-05-06T07:08:09.123+02:00), and
// hands every one over to the system before it returns. Any thread.
//
// Several processes may write to one file: it is looked at before each error, and a file that
// another process, or an administrator, wrote to, renamed or removed is opened anew. Before a note
// it is looked at where the last look is `look_lasts` old or the note does not fit: so for that
// long notes may still go to a renamed file, or be lost with a removed one. Two processes that
// rename the file in the same moment can lose the entries written in that moment. A full file that
// cannot be renamed is emptied, so that it never outgrows its limit; that raises, too.
class LogWriter {
public:
    // As the entries' own times tell it.
    static constexpr std::chrono::milliseconds look_lasts{100};

    explicit LogWriter(LogTarget target);
    ~LogWriter();

    // `entry`: UTF-8, without a line end. The standard error comes first, so that an entry is seen
    // where the file fails. Raises `log_error::file_not_writable`, "<file>: the log cannot be
    // written (<reason>)"; the next entry tries again.
    void write_error(std::chrono::system_clock::time_point time, std::string_view entry);
    void write_note(std::chrono::system_clock::time_point time, std::string_view entry);

private:
    class Sinks;
    std::unique_ptr<Sinks> sinks_;
};

// The process's writer for a target, made at the first call and kept. Any thread.
LogWriter& log_writer_for(const LogTarget& target);
// The one for what the environment asks for now. Any thread.
LogWriter& log_writer_of_environment();

}  // namespace orvo
