// What a login does with the directory, without a web page around it: the password is checked, the
// user bound, and one attribute each of the user, its profile and its account is read. By 1, 4 and
// 16 threads, each login by a user drawn from a thousand or, in the rows of regulars, by the
// thread's own, beside the raw client doing what that needs at least, a bind and three readings: on
// two connections that it keeps, the user's and the service account's, on two that it makes, or
// with a connection for each of the four. Rounds alternate; "rate_to_raw" is how many logins are
// done in the time of one of the raw client's. The server has a password policy, of which the
// component's password check asks. "operations" are those that the server counts for one login,
// "cpu_us" the microseconds of this process's processor time.

#include <benchmark/benchmark.h>

#include <random>

#include "bench/counted_work.h"
#include "bench/crew.h"
#include "bench/many_buyers.h"
#include "bench/provider_keeps.h"
#include "bench/raw_client.h"
#include "platform/interfaces/late_call.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

// Whose logins they are.
enum class Users { drawn, regular };
Users users = Users::drawn;

struct Visitor {
    PrivateSlapd& shop = many_buyers().shop;
    std::minstd_rand random{next_seed()};
    std::string name, user, profile;
    Variant id, account, password = from_utf8(shop.user_password());
    RawConnection kept = raw_connection(shop.url()), kept_service = raw_connection(shop.url());
    Object validator = create_object(u"OrvoMembership.Validator");
    bool is_wrong = false;

    static unsigned next_seed() {
        static std::atomic<unsigned> given = 0;
        return ++given;
    }
    void draw() {
        if (users == Users::regular && !name.empty()) return;
        const auto& all = many_buyers().users;
        std::tie(name, profile) = all[random() % all.size()];
        user = shop.user_dn(name);
        id = from_utf8(name);
        account = from_utf8(user);
        profile = "cn=" + profile + ",ou=Profiles,o=Shop";
    }

    Visitor() {
        late::call(validator, u"setServerInfo", {from_utf8(shop.site_ini().string())});
        is_wrong |= !raw_bind(kept_service, shop.service_dn(), shop.service_password());
    }

    RawConnection connected(const std::string& name, const std::string& code) {
        RawConnection made = raw_connection(shop.url());
        is_wrong |= !raw_bind(made, name, code);
        return made;
    }
    void read_user(const RawConnection& connection) {
        is_wrong |= !raw_read(connection, user,
                              {"cn", "OrvoUserType", "BusinessPartnerID", "ProfileCN", "sn"});
    }
    void read_profile(const RawConnection& connection) {
        is_wrong |= !raw_read(connection, profile, {"cn", "LanguageID"});
    }
    void read_account(const RawConnection& connection) {
        is_wrong |= !raw_read(connection, "cn=1,ou=Accounts,o=Shop", {"cn", "OrvoNTUser"});
    }

    void raw_on_kept() {
        draw();
        is_wrong |= !raw_bind(kept, user, shop.user_password());
        read_user(kept);
        read_profile(kept);
        read_account(kept_service);
    }
    void raw_on_two() {
        draw();
        const RawConnection made = connected(user, shop.user_password());
        read_user(made);
        read_profile(made);
        read_account(connected(shop.service_dn(), shop.service_password()));
    }
    void raw_connecting() {
        draw();
        connected(user, shop.user_password());
        read_user(connected(user, shop.user_password()));
        read_profile(connected(user, shop.user_password()));
        read_account(connected(shop.service_dn(), shop.service_password()));
    }
    void log_in() {
        draw();
        is_wrong |= !(late::call(validator, u"ValidatePassword", {id, password}) == Variant(0));
        const Object bound = create_object(u"OrvoMembership.User");
        late::call(bound, u"BindAs", {id, account, password});
        is_wrong |= !late::get(bound, u"LastName").is_text();
        const Object its_profile = late::get(bound, u"Profile").to<Object>();
        is_wrong |= !late::get(its_profile, u"LanguageID").is_text();
        is_wrong |= !(late::get(bound, u"NTUser") == Variant(u"SHOP\\shop-user"));
    }
};

void logins(benchmark::State& state, Keeps keeps, void (Visitor::*raw)(),
            Users whose = Users::drawn) {
    constexpr int rounds = 20;
    many_buyers();
    users = whose;
    const KeepsScope scope(keeps);
    Crew<Visitor> crew(static_cast<int>(state.range(0)));
    std::atomic<bool> is_wrong = false;
    double raw_time = 0, own_time = 0, raw_cpu = 0, own_cpu = 0;
    long operations = 0;
    ServerOperations server(many_buyers().shop);
    for (auto _ : state) {
        const double before_raw = processor_time();
        raw_time += crew.run(rounds, [&](Visitor& visitor) { (visitor.*raw)(); });
        raw_cpu += processor_time() - before_raw;
        server.since();
        const double before_own = processor_time();
        const double own = crew.run(rounds, [&](Visitor& visitor) {
            visitor.log_in();
            if (visitor.is_wrong) is_wrong = true;
        });
        own_cpu += processor_time() - before_own;
        operations += server.since();
        own_time += own;
        state.SetIterationTime(own);
    }
    if (is_wrong) state.SkipWithError("a login failed");
    const double done = static_cast<double>(state.iterations() * state.range(0) * rounds);
    state.counters["operations"] = static_cast<double>(operations) / done;
    state.counters["cpu_us"] = own_cpu / done * 1e6;
    state.counters["raw_cpu_us"] = raw_cpu / done * 1e6;
    state.counters["logins_per_s"] = done / own_time;
    state.counters["raw_per_s"] = done / raw_time;
    state.counters["rate_to_raw"] = raw_time / own_time;
}

void pool_to_kept(benchmark::State& state) {
    logins(state, Keeps::connections, &Visitor::raw_on_kept);
}
void regulars_to_kept(benchmark::State& state) {
    logins(state, Keeps::connections, &Visitor::raw_on_kept, Users::regular);
}
void cache_to_kept(benchmark::State& state) {
    logins(state, Keeps::connections_and_entries, &Visitor::raw_on_kept);
}
void pool_to_connecting(benchmark::State& state) {
    logins(state, Keeps::connections, &Visitor::raw_connecting);
}
void off_to_connecting(benchmark::State& state) {
    logins(state, Keeps::nothing, &Visitor::raw_connecting);
}
void off_to_two(benchmark::State& state) { logins(state, Keeps::nothing, &Visitor::raw_on_two); }

void threads(benchmark::internal::Benchmark* row) {
    row->ArgName("")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMillisecond)->UseManualTime();
}
BENCHMARK(pool_to_kept)->Name("login, pool; raw: kept connections; threads")->Apply(threads);
BENCHMARK(regulars_to_kept)
    ->Name("login, regulars, pool; raw: kept connections; threads")
    ->Apply(threads);
BENCHMARK(cache_to_kept)
    ->Name("login, pool and cache; raw: kept connections; threads")
    ->Apply(threads);
BENCHMARK(pool_to_connecting)->Name("login, pool; raw: connecting; threads")->Apply(threads);
BENCHMARK(off_to_connecting)->Name("login, no pool; raw: connecting; threads")->Apply(threads);
BENCHMARK(off_to_two)->Name("login, no pool; raw: two new connections; threads")->Apply(threads);

}  // namespace
}  // namespace orvo
