#include "suite/counters/suite_counters.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "platform/objects/recordset/builder.h"

namespace orvo::counters {
namespace {

constexpr std::size_t most = 200;

struct Counted {
    std::mutex mutex;
    std::map<std::pair<Text, Text>, std::uint64_t> counts;
};

Counted& all() {
    static Counted made;
    return made;
}

}  // namespace

void SuiteCounters::Count(const Text& name, const Text& kind) {
    Counted& counted = all();
    const std::lock_guard lock(counted.mutex);
    const auto known = counted.counts.find({name, kind});
    if (known != counted.counts.end())
        ++known->second;
    else if (counted.counts.size() < most)
        counted.counts.emplace(std::pair(name, kind), 1);
}

Object SuiteCounters::Rows() {
    RecordSetBuilder builder({u"Name", u"Kind", u"Count"});
    Counted& counted = all();
    const std::lock_guard lock(counted.mutex);
    for (const auto& [key, count] : counted.counts)
        builder.add({key.first, key.second, static_cast<double>(count)});
    return builder.open().object();
}

}  // namespace orvo::counters
