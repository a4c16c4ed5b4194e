#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "component/common/log_contract.h"
#include "platform/module/local_class.h"

namespace orvo {

// What was written to the log; texts in UTF-8, so that a test's report can be read.
struct LogEntry {
    std::string operation;
    std::string source;
    std::string message;
    std::int32_t level;
    bool operator==(const LogEntry&) const = default;
};
std::ostream& operator<<(std::ostream& out, const LogEntry& entry);

// The suite's log component, which keeps its entries. It outlives the objects it makes.
class RecordingLog {
public:
    RecordingLog();

    // The entries since the last take, and the sources of those alone.
    std::vector<LogEntry> take();
    std::vector<std::string> take_sources();

    // An entry is kept and then refused.
    bool throws = false;
    // All three arguments are changed when the entry was kept, as a log may do with what it gets by
    // reference.
    bool changes_arguments = false;
    // There is no such component at all.
    void remove() { class_.reset(); }

    int created = 0;  // how many objects were made
    int alive = 0;    // how many of them are in use

private:
    std::vector<LogEntry> entries_;
    std::optional<LocalClass> class_;
};

}  // namespace orvo
