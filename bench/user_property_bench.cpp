// A typed property of a bound user, read and written: by C++ call, by slot and late bound, over a
// provider that answers from memory.

#include <benchmark/benchmark.h>

#include "bench/memory_directory.h"
#include "component/entries/User_table.h"
#include "platform/interfaces/late_call.h"

namespace orvo {
namespace {

constexpr std::size_t SpendLimit = property_row("SpendLimit");
constexpr Currency limit{12345000};

// A user, bound and ready, with what it needs around it.
struct BoundUser {
    MemoryClasses classes;
    Ref<User> user;

    BoundUser() {
        user = make<User>();
        Text name = u"jsmith", account = u"cn=service";
        Secret password(u"sample");
        call<&User::setServerInfo>(user, u"memory");
        call<&User::BindAs>(user, name, account, password);
    }
};

void read_by_cpp_call(benchmark::State& state) {
    const BoundUser bound;
    User user;
    Text name = u"jsmith", account = u"cn=service";
    Secret password(u"sample");
    user.BindAs(name, account, password);
    for (auto _ : state) benchmark::DoNotOptimize(user.get_property<SpendLimit>());
}
BENCHMARK(read_by_cpp_call)->Name("SpendLimit read, C++ call");

void read_by_slot(benchmark::State& state) {
    const BoundUser bound;
    for (auto _ : state)
        benchmark::DoNotOptimize(call<&User::get_property<SpendLimit>>(bound.user));
}
BENCHMARK(read_by_slot)->Name("SpendLimit read, by slot");

void read_late_bound(benchmark::State& state) {
    const BoundUser bound;
    for (auto _ : state) benchmark::DoNotOptimize(late::get(bound.user.object(), u"SpendLimit"));
}
BENCHMARK(read_late_bound)->Name("SpendLimit read, late bound");

void write_by_cpp_call(benchmark::State& state) {
    const BoundUser bound;
    User user;
    Text name = u"jsmith", account = u"cn=service";
    Secret password(u"sample");
    user.BindAs(name, account, password);
    for (auto _ : state) user.put_property<SpendLimit>(limit);
}
BENCHMARK(write_by_cpp_call)->Name("SpendLimit write, C++ call");

void write_by_slot(benchmark::State& state) {
    const BoundUser bound;
    for (auto _ : state) call<&User::put_property<SpendLimit>>(bound.user, limit);
}
BENCHMARK(write_by_slot)->Name("SpendLimit write, by slot");

void write_late_bound(benchmark::State& state) {
    const BoundUser bound;
    for (auto _ : state) late::put(bound.user.object(), u"SpendLimit", limit);
}
BENCHMARK(write_late_bound)->Name("SpendLimit write, late bound");

}  // namespace
}  // namespace orvo
