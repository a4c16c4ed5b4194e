// A user created and deleted through the container, beside the raw client doing the same directory
// operations: add, set the password, read the new user and the account of its type, read the
// container, with which every deletion begins, and delete. The raw client keeps its connection, or
// it connects and authenticates for the creation and again for the deletion. Rounds alternate;
// "rate_to_raw" is how many users are created and deleted in the time of one of the raw client's.

#include <benchmark/benchmark.h>

#include "bench/big_shop.h"
#include "bench/crew.h"
#include "bench/provider_keeps.h"
#include "bench/raw_writes.h"

namespace orvo {
namespace {

struct Creator {
    PrivateSlapd& shop = shop_of(1000);
    RawConnection kept = connected();
    Object members = bound_members(shop);
    bool is_wrong = false;

    RawConnection connected() {
        RawConnection made = raw_connection(shop.url());
        is_wrong |= !raw_bind(made, shop.service_dn(), shop.service_password());
        return made;
    }
    void raw_create(const RawConnection& connection) {
        const std::string user = shop.user_dn("bench");
        is_wrong |= !raw_add_user(connection, user, "bench");
        is_wrong |= !raw_set_password(connection, user, "bench-sample");
        is_wrong |= !raw_read(connection, user, {"cn", "OrvoUserType", "ProfileCN"});
        is_wrong |= !raw_read(connection, "cn=0,ou=Accounts,o=Shop", {"cn"});
    }
    void raw_remove(const RawConnection& connection) {
        is_wrong |= !raw_read(connection, "ou=Users,o=Shop", {"ou"});
        is_wrong |= !raw_delete(connection, shop.user_dn("bench"));
    }
    void raw_kept() {
        raw_create(kept);
        raw_remove(kept);
    }
    void raw_connecting() {
        raw_create(connected());
        raw_remove(connected());
    }
    void own() {
        late::call(members, u"CreateUser", {u"bench", u"bench-sample"});
        late::call(members, u"DeleteUser", {u"bench"});
    }
};

void create_and_delete(benchmark::State& state, Keeps keeps, void (Creator::*raw)()) {
    constexpr int rounds = 20;
    shop_of(1000);
    const KeepsScope scope(keeps);
    Crew<Creator> crew(1);
    bool is_wrong = false;
    double raw_time = 0, own_time = 0;
    for (auto _ : state) {
        raw_time += crew.run(rounds, [&](Creator& creator) {
            (creator.*raw)();
            is_wrong |= creator.is_wrong;
        });
        const double own = crew.run(rounds, [](Creator& creator) { creator.own(); });
        own_time += own;
        state.SetIterationTime(own / rounds);
    }
    if (is_wrong) state.SkipWithError("the raw client failed");
    const double done = static_cast<double>(state.iterations()) * rounds;
    state.counters["raw_us"] = raw_time / done * 1e6;
    state.counters["rate_to_raw"] = raw_time / own_time;
}

void pool_to_kept(benchmark::State& state) {
    create_and_delete(state, Keeps::connections, &Creator::raw_kept);
}
void pool_to_connecting(benchmark::State& state) {
    create_and_delete(state, Keeps::connections, &Creator::raw_connecting);
}
void off_to_connecting(benchmark::State& state) {
    create_and_delete(state, Keeps::nothing, &Creator::raw_connecting);
}
BENCHMARK(pool_to_kept)
    ->Name("CreateUser, DeleteUser, pool; raw: kept connection")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();
BENCHMARK(pool_to_connecting)
    ->Name("CreateUser, DeleteUser, pool; raw: connecting")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();
BENCHMARK(off_to_connecting)
    ->Name("CreateUser, DeleteUser, no pool; raw: connecting")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
