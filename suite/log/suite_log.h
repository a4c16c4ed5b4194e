#pragma once

// The suite's log component.

#include "component/common/log_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/log/log_entry.h"

namespace orvo {

class LogWriter;

// Writes to where the environment asks for when the object is made (log_target.h), entries in the
// form of log_entry.h. Both operations write to the same place; an entry of LogMessageAlternate is
// marked "[alternate]". Both answer an empty value, and raise (log_writer.h) when an entry cannot
// be written: whether that matters is the caller's decision. The objects of a process share one
// writer, so making one for a single entry is cheap. One object belongs to one thread.
class SuiteLog final : public Log {
public:
    SuiteLog();

    Variant LogMessage(Text& source, Text& message, std::int32_t& level) override;
    Variant LogMessageAlternate(Text& source, Text& message, std::int32_t& level) override;

private:
    Variant write(LogChannel channel, const Text& source, const Text& message,
                  std::int32_t level) const;

    LogWriter& writer_;
    bool notes_;
};

template <>
inline constexpr auto class_of<SuiteLog> =
    describe_class<Log>("Quendra.Log", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e722");

}  // namespace orvo
