#include "suite/directory/settings/pool_settings.h"

#include <variant>

#include "suite/directory/settings/named_numbers.h"

namespace orvo::directory {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

template <class T>
using Field = T& (*)(PoolSettings& settings);

struct Row : NumberSetting {
    std::variant<Field<std::size_t>, Field<milliseconds>, Field<seconds>> field;

    void put(PoolSettings& settings, std::int64_t number) const {
        std::visit(
            [&]<class T>(Field<T> of) {
                using Count = decltype(counted(of(settings)));
                of(settings) = T(static_cast<Count>(number));
            },
            field);
    }
    DescribedSetting told() const {
        PoolSettings usual;
        return std::visit(
            [&]<class T>(Field<T> of) {
                return described(*this, unit(T()), static_cast<std::int64_t>(counted(of(usual))));
            },
            field);
    }

private:
    static std::size_t counted(std::size_t number) { return number; }
    static std::int64_t counted(auto duration) { return duration.count(); }
    static std::string unit(std::size_t) { return "connections"; }
    static std::string unit(milliseconds) { return "milliseconds"; }
    static std::string unit(seconds) { return "seconds"; }
};

constexpr Row rows[] = {
    {{"MaximumSize", 0, 1000,
      "Connections of one user, or of the password checks of one container, at the same time. 0: "
      "any "
      "number, none of which is kept longer than an object that works with the same credentials."},
     +[](PoolSettings& s) -> std::size_t& { return s.maximum_size; }},
    {{"MaximumIdle", 0, 10'000,
      "Idle connections of all users together; of more, the least recently used are closed."},
     +[](PoolSettings& s) -> std::size_t& { return s.maximum_idle; }},
    {{"WaitLimit", 0, 600'000,
      "How long an operation waits for a connection where MaximumSize are in use; in the embedded "
      "directory, how long a writer waits for others."},
     +[](PoolSettings& s) -> milliseconds& { return s.wait; }},
    {{"IdleLimit", 1, 86'400, "How long a connection is idle before it is closed."},
     +[](PoolSettings& s) -> seconds& { return s.idle; }},
    {{"AgeLimit", 1, 604'800, "How long a connection lives."},
     +[](PoolSettings& s) -> seconds& { return s.age; }},
    {{"ConnectLimit", 1, 600'000, "How long connecting takes, encryption included."},
     +[](PoolSettings& s) -> milliseconds& { return s.limits.connect; }},
    {{"AnswerLimit", 1, 600'000,
      "How long the answer to a bind, a reading of one entry or a change takes."},
     +[](PoolSettings& s) -> milliseconds& { return s.limits.answer; }},
    {{"OperationLimit", 1, 3'600'000,
      "How long the answer to a search takes; of one with pages, each page."},
     +[](PoolSettings& s) -> milliseconds& { return s.limits.operation; }},
    {{"RecheckAfter", 0, 3600,
      "How long credentials that the server has accepted or refused are known without asking it."},
     +[](PoolSettings& s) -> seconds& { return s.recheck; }},
    {{"FailbackAfter", 0, 86'400,
      "How long a preferred server that was down must have been up again before it is used."},
     +[](PoolSettings& s) -> seconds& { return s.failback_after; }},
    {{"ReplicaLag", 0, 3600,
      "How long after a write an entry is read from the server that took the write."},
     +[](PoolSettings& s) -> seconds& { return s.replica_lag; }},
};

}  // namespace

PoolSettings changed(PoolSettings settings, const Variant& names, const Variant& values) {
    const std::vector<NumberSetting> table(std::begin(rows), std::end(rows));
    for (const GivenNumber& given : read_numbers(names, values, table))
        rows[given.setting].put(settings, given.number);
    return settings;
}

std::vector<DescribedSetting> described_pool_settings() {
    std::vector<DescribedSetting> all;
    for (const Row& row : rows) all.push_back(row.told());
    return all;
}

}  // namespace orvo::directory
