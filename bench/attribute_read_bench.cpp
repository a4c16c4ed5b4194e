// One attribute read of a bound LdapAccess: by C++ call, by slot and late bound, over a provider
// that answers from memory; and that provider alone.

#include <benchmark/benchmark.h>

#include "bench/memory_directory.h"
#include "component/entries/LdapAccess.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/late_call.h"

namespace orvo {
namespace {

template <class Entry, class BindAs>
void bind(Entry& entry, BindAs bind_as) {
    Text name = u"cn=jsmith", user, server, container;
    Secret password;
    bind_as(entry, name, user, password, server, container);
}

void by_cpp_call(benchmark::State& state) {
    const MemoryClasses classes;
    LdapAccess entry;
    bind(entry, [](LdapAccess& bound, auto&... given) { bound.BindAs(given...); });
    Text name = u"mail";
    for (auto _ : state) benchmark::DoNotOptimize(entry.GetAttribValue(name));
}
BENCHMARK(by_cpp_call)->Name("GetAttribValue, C++ call");

void by_slot(benchmark::State& state) {
    const MemoryClasses classes;
    const auto entry = make<LdapAccess>();
    bind(entry, [](auto& bound, auto&... given) { call<&LdapAccess::BindAs>(bound, given...); });
    Text name = u"mail";
    for (auto _ : state) benchmark::DoNotOptimize(call<&LdapAccess::GetAttribValue>(entry, name));
}
BENCHMARK(by_slot)->Name("GetAttribValue, by slot");

void late_bound(benchmark::State& state) {
    const MemoryClasses classes;
    const auto entry = make<LdapAccess>();
    bind(entry, [](auto& bound, auto&... given) { call<&LdapAccess::BindAs>(bound, given...); });
    for (auto _ : state)
        benchmark::DoNotOptimize(late::call(entry.object(), u"GetAttribValue", {u"mail"}));
}
BENCHMARK(late_bound)->Name("GetAttribValue, late bound");

void provider_alone(benchmark::State& state) {
    const auto entry = make<MemoryEntry>();
    Text name = u"mail";
    for (auto _ : state) benchmark::DoNotOptimize(call<&DirectoryEntry::GetValues>(entry, name));
}
BENCHMARK(provider_alone)->Name("the provider's GetValues alone, by slot");

}  // namespace
}  // namespace orvo
