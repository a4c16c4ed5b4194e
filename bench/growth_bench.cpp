// What grows with the directory: a page of 1,000 users, the first and a later one, a user
// found by GUID, and a user created and deleted, among 1,000, 10,000 and (but not in a brief run)
// 100,000 users. "peak_MiB" is the largest memory of this process while the row ran.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/big_shop.h"
#include "bench/crew.h"
#include "bench/peak_memory.h"
#include "platform/values/values.h"

namespace orvo {
namespace {

struct Visitor {
    Object members;
    bool is_wrong = false;
    static inline PrivateSlapd* shop = nullptr;

    Visitor() : members(bound_members(*shop)) {}

    void page(const Variant& criteria) {
        const Object rows =
            late::call(members, u"GetOrvoUsers", {criteria, u"", std::int16_t(1000)}).to<Object>();
        is_wrong |= !(late::get(rows, u"RecordCount") == Variant(1000));
    }
    void first_page() { page(Object()); }
    void later_page() { page(Values{u"cn>=b!"}); }
    void find_by_guid() {
        const Object found =
            late::call(members, u"GetUserFromGUID", {u"95489279F1CA185C11635B6F0DE4B28C"})
                .to<Object>();
        is_wrong |= !(late::get(found, u"CN") == Variant(u"jsmith"));
    }
    void create_and_delete() {
        late::call(members, u"CreateUser", {u"bench", u"bench-sample"});
        late::call(members, u"DeleteUser", {u"bench"});
    }
};

void grow(benchmark::State& state, void (Visitor::*task)()) {
    // Three users of the shop have no type and are in no list.
    Visitor::shop = &shop_of(state.range(0) + 3);
    Crew<Visitor> crew(1);
    bool is_wrong = false;
    PeakMemory::begin();
    for (auto _ : state)
        state.SetIterationTime(crew.run(1, [&](Visitor& visitor) {
            (visitor.*task)();
            is_wrong |= visitor.is_wrong;
        }));
    if (is_wrong) state.SkipWithError("rows are missing");
    state.counters["peak_MiB"] = PeakMemory::mebibytes();
}

// The rows of one size side by side, so that each shop is made once.
struct Task {
    const char* name;
    void (Visitor::*task)();
};
constexpr Task tasks[] = {
    {"GetOrvoUsers, the first page; users", &Visitor::first_page},
    {"GetOrvoUsers, a later page; users", &Visitor::later_page},
    {"GetUserFromGUID; users", &Visitor::find_by_guid},
    {"CreateUser and DeleteUser; users", &Visitor::create_and_delete},
};

[[maybe_unused]] const bool is_registered = [] {
    for (const std::int64_t users : {1'000, 10'000, 100'000}) {
        if (users == 100'000 && is_brief()) continue;
        for (const Task& task : tasks) {
            if (users == 1'000 && task.task == &Visitor::later_page) continue;  // there is none
            benchmark::RegisterBenchmark(
                task.name, [task](benchmark::State& state) { grow(state, task.task); })
                ->ArgName("")
                ->Arg(users)
                ->Unit(benchmark::kMillisecond)
                ->UseManualTime();
        }
    }
    return true;
}();

}  // namespace
}  // namespace orvo
