#include "suite/counters/suite_counters.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "platform/objects/recordset/builder.h"
#include "suite/counters/store_figures.h"

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

Object SuiteCounters::Store() {
    RecordSetBuilder builder({u"Reachable", u"Commands", u"Failures", u"Connects", u"Failovers",
                              u"Connections", u"InUse", u"Seconds"});
    const auto number = [](auto count) { return static_cast<double>(count); };
    if (const auto figures = store_figures()) {
        const store::Redis::Counts& counts = figures->counts;
        builder.add({figures->is_reachable, number(counts.commands), number(counts.failures),
                     number(counts.connects), number(counts.failovers), number(counts.connections),
                     number(counts.in_use), number(counts.total_time.count()) / 1e6});
    }
    return builder.open().object();
}

}  // namespace orvo::counters
