// What the component itself adds to a password check: by slot and late bound, over a provider whose
// validator answers at once.

#include <benchmark/benchmark.h>

#include "bench/memory_directory.h"
#include "component/auth/Validator.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"

namespace orvo {
namespace {

struct Check {
    MemoryClasses classes;
    Ref<Validator> validator = make<Validator>();
    Variant user = u"jsmith", password = u"a password of usual length";

    Check() { call<&Validator::setServerInfo>(validator, u"a configuration"); }
};

void by_slot(benchmark::State& state) {
    Check check;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            call<&Validator::ValidatePassword>(check.validator, check.user, check.password));
}
BENCHMARK(by_slot)->Name("ValidatePassword, by slot");

void late_bound(benchmark::State& state) {
    const Check check;
    for (auto _ : state)
        benchmark::DoNotOptimize(late::call(check.validator.object(), u"ValidatePassword",
                                            {check.user, check.password}));
}
BENCHMARK(late_bound)->Name("ValidatePassword, late bound");

void creation(benchmark::State& state) {
    const MemoryClasses classes;
    for (auto _ : state) benchmark::DoNotOptimize(create_object(u"Bench.Directory"));
}
BENCHMARK(creation)->Name("create_object of a class of the process");

void module_creation(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(create_object(u"OrvoDirectory.Ldap"));
}
BENCHMARK(module_creation)->Name("create_object of a module's class");

}  // namespace
}  // namespace orvo
