#include "suite/directory/settings/pool_settings.h"

#include "suite/directory/settings/named_numbers.h"

namespace orvo::directory {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

struct Row : NumberSetting {
    void (*put)(PoolSettings& settings, std::int64_t number);
};

constexpr Row rows[] = {
    {{"MaximumSize", 0, 1000},
     [](PoolSettings& s, std::int64_t n) { s.maximum_size = static_cast<std::size_t>(n); }},
    {{"MaximumIdle", 0, 10'000},
     [](PoolSettings& s, std::int64_t n) { s.maximum_idle = static_cast<std::size_t>(n); }},
    {{"WaitLimit", 0, 600'000}, [](PoolSettings& s, std::int64_t n) { s.wait = milliseconds(n); }},
    {{"IdleLimit", 1, 86'400}, [](PoolSettings& s, std::int64_t n) { s.idle = seconds(n); }},
    {{"AgeLimit", 1, 604'800}, [](PoolSettings& s, std::int64_t n) { s.age = seconds(n); }},
    {{"ConnectLimit", 1, 600'000},
     [](PoolSettings& s, std::int64_t n) { s.limits.connect = milliseconds(n); }},
    {{"AnswerLimit", 1, 600'000},
     [](PoolSettings& s, std::int64_t n) { s.limits.answer = milliseconds(n); }},
    {{"OperationLimit", 1, 3'600'000},
     [](PoolSettings& s, std::int64_t n) { s.limits.operation = milliseconds(n); }},
    {{"RecheckAfter", 0, 3600}, [](PoolSettings& s, std::int64_t n) { s.recheck = seconds(n); }},
    {{"FailbackAfter", 0, 86'400},
     [](PoolSettings& s, std::int64_t n) { s.failback_after = seconds(n); }},
    {{"ReplicaLag", 0, 3600}, [](PoolSettings& s, std::int64_t n) { s.replica_lag = seconds(n); }},
};

}  // namespace

PoolSettings changed(PoolSettings settings, const Variant& names, const Variant& values) {
    const std::vector<NumberSetting> table(std::begin(rows), std::end(rows));
    for (const GivenNumber& given : read_numbers(names, values, table))
        rows[given.setting].put(settings, given.number);
    return settings;
}

}  // namespace orvo::directory
