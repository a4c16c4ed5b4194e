#include "tests/support/recording/recording_log.h"

#include <utility>

namespace orvo {
namespace {

constexpr abi::CLSID log_clsid = guid("7e57ab1e-0000-4000-8000-000000000001");

}  // namespace

class LogComponent final : public Log {
public:
    LogComponent(RecordingLog& owner, std::vector<LogEntry>& entries)
        : owner_(owner), entries_(entries) {
        ++owner_.created;
        ++owner_.alive;
    }
    ~LogComponent() { --owner_.alive; }

    Variant LogMessage(Text& source, Text& message, std::int32_t& level) override {
        return keep("LogMessage", source, message, level);
    }
    Variant LogMessageAlternate(Text& source, Text& message, std::int32_t& level) override {
        return keep("LogMessageAlternate", source, message, level);
    }

private:
    Variant keep(const char* operation, Text& source, Text& message, std::int32_t& level) {
        entries_.push_back({operation, to_utf8(source), to_utf8(message), level});
        if (owner_.changes_arguments) {
            source = message = u"changed";
            level = 7;
        }
        if (owner_.throws) throw Failure(error_number(0x80040201), {}, u"The log is full");
        return {};
    }

    RecordingLog& owner_;
    std::vector<LogEntry>& entries_;
};

template <>
inline constexpr auto class_of<LogComponent> = describe_class<Log>("Quendra.Log");

std::ostream& operator<<(std::ostream& out, const LogEntry& entry) {
    return out << entry.operation << '(' << entry.source << ", level " << entry.level << ")"
               << entry.message;
}

RecordingLog::RecordingLog() {
    class_.emplace(u"Quendra.Log", log_clsid,
                   [this] { return make<LogComponent>(*this, entries_).object(); });
}

std::vector<LogEntry> RecordingLog::take() { return std::exchange(entries_, {}); }

std::vector<std::string> RecordingLog::take_sources() {
    std::vector<std::string> sources;
    for (const LogEntry& entry : take()) sources.push_back(entry.source);
    return sources;
}

}  // namespace orvo
