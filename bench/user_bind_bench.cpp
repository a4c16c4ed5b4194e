// BindAs of a user with a profile, beside the raw client doing the same directory operations: the
// user's entry with the user's rights, the profile's entry with the same, the account's entry with
// the service account's, each over a connection of its own. Rounds alternate.

#include <benchmark/benchmark.h>
#include <ldap.h>

#include <chrono>

#include "platform/abi/create.h"
#include "platform/abi/late_call.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

using std::chrono::steady_clock;

PrivateSlapd& directory() {
    static PrivateSlapd slapd;
    return slapd;
}

bool raw_entry(const std::string& user, std::string password, const std::string& entry,
               const std::vector<const char*>& attributes) {
    LDAP* connection = nullptr;
    ldap_initialize(&connection, directory().url().c_str());
    const int version = LDAP_VERSION3;
    ldap_set_option(connection, LDAP_OPT_PROTOCOL_VERSION, &version);
    berval credentials{password.size(), password.data()};
    LDAPMessage* found = nullptr;
    const bool done = ldap_sasl_bind_s(connection, user.c_str(), LDAP_SASL_SIMPLE, &credentials,
                                       nullptr, nullptr, nullptr) == LDAP_SUCCESS &&
                      ldap_search_ext_s(connection, entry.c_str(), LDAP_SCOPE_BASE, nullptr,
                                        const_cast<char**>(attributes.data()), 0, nullptr, nullptr,
                                        nullptr, LDAP_NO_LIMIT, &found) == LDAP_SUCCESS;
    ldap_msgfree(found);
    ldap_unbind_ext_s(connection, nullptr, nullptr);
    return done;
}

bool raw_bind() {
    const std::string user = directory().user_dn("jsmith");
    const std::string password = directory().user_password();
    return raw_entry(user, password, user,
                     {"cn", "OrvoUserType", "BusinessPartnerID", "ProfileCN", nullptr}) &&
           raw_entry(user, password, "cn=Buyers,ou=Profiles,o=Shop", {"cn", nullptr}) &&
           raw_entry(directory().service_dn(), directory().service_password(),
                     "cn=1,ou=Accounts,o=Shop", {"cn", nullptr});
}

void user_bind(benchmark::State& state) {
    const Object user = create_object(u"OrvoMembership.User");
    late::call(user, u"setServerInfo", {from_utf8(directory().site_ini().string())});
    const Text account = from_utf8(directory().user_dn("jsmith"));
    const Text password = from_utf8(directory().user_password());
    std::chrono::duration<double> raw_time{}, own_time{};
    for (auto _ : state) {
        const auto begin = steady_clock::now();
        if (!raw_bind()) state.SkipWithError("the raw client failed");
        const auto middle = steady_clock::now();
        const Object bound = create_object(u"OrvoMembership.User");
        late::call(bound, u"BindAs", {u"jsmith", account, password});
        const std::chrono::duration<double> own = steady_clock::now() - middle;
        raw_time += middle - begin;
        own_time += own;
        state.SetIterationTime(own.count());
    }
    state.counters["raw_us"] =
        raw_time.count() / static_cast<double>(state.iterations()) * 1'000'000;
    state.counters["rate_to_raw"] = raw_time.count() / own_time.count();
}
BENCHMARK(user_bind)
    ->Name("User.BindAs with a profile, beside the raw client")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
