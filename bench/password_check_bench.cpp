// Password checks against one slapd, by 1, 4 and 16 threads: the component with the provider's pool
// of connections beside the raw LDAP client that binds on a connection it keeps, and without the
// pool beside the raw client that connects for each check. In each round the raw client goes first
// and the component after it, so that both see the same machine; "rate_to_raw" is how many checks
// the component does in the time of one of the raw client's.

#include <benchmark/benchmark.h>

#include <optional>

#include "bench/crew.h"
#include "bench/provider_keeps.h"
#include "bench/raw_client.h"
#include "platform/abi/late_call.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

PrivateSlapd& directory() {
    static PrivateSlapd slapd;
    return slapd;
}

struct Checker {
    std::string url = directory().url();
    std::string user = directory().user_dn("jsmith");
    std::string password = directory().user_password();
    Variant password_value = from_utf8(password);
    RawConnection kept = raw_connection(url);
    Object validator = create_object(u"OrvoMembership.Validator");
    bool is_wrong = false;

    Checker() {
        late::call(validator, u"setServerInfo", {from_utf8(directory().site_ini().string())});
    }

    void bind_kept() { is_wrong |= !raw_bind(kept, user, password); }
    void bind_new() { is_wrong |= !raw_bind(raw_connection(url), user, password); }
    void check() {
        is_wrong |= !(late::call(validator, u"ValidatePassword", {u"jsmith", password_value}) ==
                      Variant(0));
    }
};

void checks(benchmark::State& state, Keeps keeps, void (Checker::*raw)()) {
    constexpr int rounds = 50;
    directory();
    const KeepsScope scope(keeps);
    Crew<Checker> crew(static_cast<int>(state.range(0)));
    std::atomic<bool> is_wrong = false;
    double raw_time = 0, own_time = 0;
    for (auto _ : state) {
        raw_time += crew.run(rounds, [&](Checker& checker) { (checker.*raw)(); });
        const double own = crew.run(rounds, [&](Checker& checker) {
            checker.check();
            if (checker.is_wrong) is_wrong = true;
        });
        own_time += own;
        state.SetIterationTime(own);
    }
    if (is_wrong) state.SkipWithError("a password was refused");
    const double done = static_cast<double>(state.iterations() * state.range(0) * rounds);
    state.counters["checks_per_s"] = done / own_time;
    state.counters["raw_per_s"] = done / raw_time;
    state.counters["rate_to_raw"] = raw_time / own_time;
}

void with_pool(benchmark::State& state) { checks(state, Keeps::connections, &Checker::bind_kept); }
void without_pool(benchmark::State& state) { checks(state, Keeps::nothing, &Checker::bind_new); }

BENCHMARK(with_pool)
    ->Name("ValidatePassword, pool; raw: bind on a kept connection; threads")
    ->ArgName("")
    ->Arg(1)
    ->Arg(4)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();
BENCHMARK(without_pool)
    ->Name("ValidatePassword, no pool; raw: connect, bind, close; threads")
    ->ArgName("")
    ->Arg(1)
    ->Arg(4)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
