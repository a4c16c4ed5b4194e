// BindAs of a user with a profile, by 1, 4 and 16 threads, beside the raw client doing the same
// directory operations: the user's entry and the profile's entry with the user's rights, the
// account's entry with the service account's. The raw client connects and authenticates for each of
// the three, or it keeps two connections and authenticates the user on one of them. Rounds
// alternate; "rate_to_raw" is how many users are bound in the time of one of the raw client's.

#include <benchmark/benchmark.h>

#include "bench/buyers.h"
#include "bench/crew.h"
#include "bench/provider_keeps.h"
#include "bench/raw_client.h"
#include "platform/interfaces/late_call.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

PrivateSlapd& directory() {
    static PrivateSlapd slapd;
    return slapd;
}

struct Binder {
    std::string url = directory().url();
    std::string name = next_buyer();
    std::string user = directory().user_dn(name);
    std::string password = directory().user_password();
    std::string service = directory().service_dn();
    std::string service_password = directory().service_password();
    Variant id = from_utf8(name);
    Variant account = from_utf8(user);
    Variant account_password = from_utf8(password);
    Object settings = create_object(u"OrvoMembership.User");
    RawConnection kept = raw_connection(url);
    RawConnection kept_service = raw_connection(url);
    bool is_wrong = false;

    Binder() {
        late::call(settings, u"setServerInfo", {from_utf8(directory().site_ini().string())});
        is_wrong |= !raw_bind(kept_service, service, service_password);
    }

    void read_user(const RawConnection& connection) {
        is_wrong |=
            !raw_read(connection, user, {"cn", "OrvoUserType", "BusinessPartnerID", "ProfileCN"});
    }
    void read_profile(const RawConnection& connection) {
        is_wrong |= !raw_read(connection, "cn=Buyers,ou=Profiles,o=Shop", {"cn"});
    }
    void read_account(const RawConnection& connection) {
        is_wrong |= !raw_read(connection, "cn=1,ou=Accounts,o=Shop", {"cn"});
    }

    void raw_on_kept() {
        is_wrong |= !raw_bind(kept, user, password);
        read_user(kept);
        read_profile(kept);
        read_account(kept_service);
    }
    void raw_connecting() {
        for (const auto read : {&Binder::read_user, &Binder::read_profile}) {
            const RawConnection made = raw_connection(url);
            is_wrong |= !raw_bind(made, user, password);
            (this->*read)(made);
        }
        const RawConnection made = raw_connection(url);
        is_wrong |= !raw_bind(made, service, service_password);
        read_account(made);
    }
    void bind() {
        const Object bound = create_object(u"OrvoMembership.User");
        late::call(bound, u"BindAs", {id, account, account_password});
    }
};

void binds(benchmark::State& state, Keeps keeps, void (Binder::*raw)()) {
    constexpr int rounds = 20;
    directory();
    const KeepsScope scope(keeps);
    Crew<Binder> crew(static_cast<int>(state.range(0)));
    std::atomic<bool> is_wrong = false;
    double raw_time = 0, own_time = 0;
    for (auto _ : state) {
        raw_time += crew.run(rounds, [&](Binder& binder) {
            (binder.*raw)();
            if (binder.is_wrong) is_wrong = true;
        });
        const double own = crew.run(rounds, [](Binder& binder) { binder.bind(); });
        own_time += own;
        state.SetIterationTime(own);
    }
    if (is_wrong) state.SkipWithError("the raw client failed");
    const double done = static_cast<double>(state.iterations() * state.range(0) * rounds);
    state.counters["binds_per_s"] = done / own_time;
    state.counters["raw_per_s"] = done / raw_time;
    state.counters["rate_to_raw"] = raw_time / own_time;
}

void pool_to_connecting(benchmark::State& state) {
    binds(state, Keeps::connections, &Binder::raw_connecting);
}
void pool_to_kept(benchmark::State& state) {
    binds(state, Keeps::connections, &Binder::raw_on_kept);
}
void checking_to_kept(benchmark::State& state) {
    binds(state, Keeps::checked_connections, &Binder::raw_on_kept);
}
void off_to_connecting(benchmark::State& state) {
    binds(state, Keeps::nothing, &Binder::raw_connecting);
}

void cache_to_kept(benchmark::State& state) {
    binds(state, Keeps::connections_and_entries, &Binder::raw_on_kept);
}

void threads(benchmark::internal::Benchmark* row) {
    row->ArgName("")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMillisecond)->UseManualTime();
}
BENCHMARK(pool_to_connecting)->Name("BindAs, pool; raw: connecting; threads")->Apply(threads);
BENCHMARK(pool_to_kept)->Name("BindAs, pool; raw: kept connections; threads")->Apply(threads);
BENCHMARK(checking_to_kept)
    ->Name("BindAs, pool, RecheckAfter 0; raw: kept connections; threads")
    ->Apply(threads);
BENCHMARK(cache_to_kept)
    ->Name("BindAs, pool and cache; raw: kept connections; threads")
    ->Apply(threads);
BENCHMARK(off_to_connecting)->Name("BindAs, no pool; raw: connecting; threads")->Apply(threads);

}  // namespace
}  // namespace orvo
