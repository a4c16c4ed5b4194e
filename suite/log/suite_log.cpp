#include "suite/log/suite_log.h"

#include "suite/log/log_target.h"
#include "suite/log/log_writer.h"

namespace orvo {

SuiteLog::SuiteLog() : writer_(log_writer_of_environment()), notes_(log_notes_of_environment()) {}

Variant SuiteLog::LogMessage(Text& source, Text& message, std::int32_t& level) {
    return write(LogChannel::main, source, message, level);
}

Variant SuiteLog::LogMessageAlternate(Text& source, Text& message, std::int32_t& level) {
    return write(LogChannel::alternate, source, message, level);
}

Variant SuiteLog::write(LogChannel channel, const Text& source, const Text& message,
                        std::int32_t level) const {
    const auto now = std::chrono::system_clock::now();
    if (level == log_level_error)
        writer_.write_error(now, log_entry(channel, level, source, message));
    else if (notes_)
        writer_.write_note(now, log_entry(channel, level, source, message));
    return {};
}

}  // namespace orvo
