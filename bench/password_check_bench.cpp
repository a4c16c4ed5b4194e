// Password checks against one slapd, by 1, 4 and 16 threads: the component with the provider's pool
// of connections beside the raw LDAP client that binds on a connection it keeps, and without the
// pool beside the raw client that connects for each check. The component is called by slot, as a
// client in C++ calls it, and late bound, as a script does. In each round the raw client goes first
// and the component after it, so that both see the same machine; "rate_to_raw" is how many checks
// the component does in the time of one of the raw client's.
//
// The component asks a server with a password policy, with each check, what that says; the raw
// client does not. A server that has no policy notes the question in its log each time.

#include <benchmark/benchmark.h>

#include <array>
#include <optional>

#include "bench/crew.h"
#include "bench/provider_keeps.h"
#include "bench/raw_client.h"
#include "component/auth/Validator.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/late_call.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

PrivateSlapd& with_policy() {
    static PrivateSlapd slapd({.password_policy = true});
    return slapd;
}
PrivateSlapd& without_policy() {
    static PrivateSlapd slapd;
    return slapd;
}

// The one that the workers check against.
PrivateSlapd* directory = nullptr;

struct Checker {
    std::string url = directory->url();
    std::string user = directory->user_dn("jsmith");
    std::string password = directory->user_password();
    // A script's variables, which it passes by reference.
    std::array<Variant, 2> arguments = {u"jsmith", from_utf8(password)};
    RawConnection kept = raw_connection(url);
    Object validator = create_object(u"OrvoMembership.Validator");
    Ref<Validator> slots = Ref<Validator>::from(validator);
    const Variant right = 0;
    bool is_wrong = false;

    Checker() {
        late::call(validator, u"setServerInfo", {from_utf8(directory->site_ini().string())});
    }

    void bind_kept() { is_wrong |= !raw_bind(kept, user, password); }
    void bind_new() { is_wrong |= !raw_bind(raw_connection(url), user, password); }
    void check() {
        is_wrong |=
            !(call<&Validator::ValidatePassword>(slots, arguments[0], arguments[1]) == right);
    }
    void check_late() {
        is_wrong |= !(late::call_by_reference(validator, u"ValidatePassword", arguments) == right);
    }
};

void checks(benchmark::State& state, PrivateSlapd& server, Keeps keeps, void (Checker::*raw)(),
            void (Checker::*own)() = &Checker::check) {
    constexpr int rounds = 50;
    directory = &server;
    const KeepsScope scope(keeps);
    Crew<Checker> crew(static_cast<int>(state.range(0)));
    std::atomic<bool> is_wrong = false;
    double raw_time = 0, own_time = 0;
    for (auto _ : state) {
        raw_time += crew.run(rounds, [&](Checker& checker) { (checker.*raw)(); });
        const double time = crew.run(rounds, [&](Checker& checker) {
            (checker.*own)();
            if (checker.is_wrong) is_wrong = true;
        });
        own_time += time;
        state.SetIterationTime(time);
    }
    if (is_wrong) state.SkipWithError("a password was refused");
    const double done = static_cast<double>(state.iterations() * state.range(0) * rounds);
    state.counters["checks_per_s"] = done / own_time;
    state.counters["raw_per_s"] = done / raw_time;
    state.counters["rate_to_raw"] = raw_time / own_time;
}

void pool(benchmark::State& state) {
    checks(state, with_policy(), Keeps::connections, &Checker::bind_kept);
}
void pool_late(benchmark::State& state) {
    checks(state, with_policy(), Keeps::connections, &Checker::bind_kept, &Checker::check_late);
}
void no_pool(benchmark::State& state) {
    checks(state, with_policy(), Keeps::nothing, &Checker::bind_new);
}
void pool_no_policy(benchmark::State& state) {
    checks(state, without_policy(), Keeps::connections, &Checker::bind_kept);
}
void no_pool_no_policy(benchmark::State& state) {
    checks(state, without_policy(), Keeps::nothing, &Checker::bind_new);
}

void by_threads(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMillisecond)->UseManualTime();
}

BENCHMARK(pool)
    ->Name("ValidatePassword, pool; raw: bind on a kept connection; threads")
    ->Apply(by_threads);
BENCHMARK(pool_late)
    ->Name("ValidatePassword late bound, pool; raw: as above; threads")
    ->Apply(by_threads);
BENCHMARK(no_pool)
    ->Name("ValidatePassword, no pool; raw: connect, bind, close; threads")
    ->Apply(by_threads);
BENCHMARK(pool_no_policy)
    ->Name("server without a policy: ValidatePassword, pool; raw: as above; threads")
    ->Apply(by_threads);
BENCHMARK(no_pool_no_policy)
    ->Name("server without a policy: ValidatePassword, no pool; raw: as above; threads")
    ->Apply(by_threads);

}  // namespace
}  // namespace orvo
