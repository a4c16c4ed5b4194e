// Password checks against one slapd: the component beside the raw LDAP client that does the same,
// a new connection for each check.

#include <benchmark/benchmark.h>
#include <ldap.h>

#include <cstdlib>

#include "platform/abi/create.h"
#include "platform/abi/late_call.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

PrivateSlapd& directory() {
    static PrivateSlapd slapd;
    return slapd;
}

void raw_client(benchmark::State& state) {
    const std::string url = directory().url();
    const std::string dn = directory().user_dn("jsmith");
    const std::string password = directory().user_password();
    for (auto _ : state) {
        LDAP* connection = nullptr;
        ldap_initialize(&connection, url.c_str());
        const int version = LDAP_VERSION3;
        ldap_set_option(connection, LDAP_OPT_PROTOCOL_VERSION, &version);
        berval credentials{password.size(), const_cast<char*>(password.data())};
        const int result = ldap_sasl_bind_s(connection, dn.c_str(), LDAP_SASL_SIMPLE, &credentials,
                                            nullptr, nullptr, nullptr);
        ldap_unbind_ext_s(connection, nullptr, nullptr);
        if (result != LDAP_SUCCESS) state.SkipWithError(ldap_err2string(result));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(raw_client)->Name("raw client: connect, bind, close")->UseRealTime();

void validator(benchmark::State& state) {
    const Object checker = create_object(u"OrvoMembership.Validator");
    late::call(checker, u"setServerInfo", {from_utf8(directory().site_ini().string())});
    const Text password = from_utf8(directory().user_password());
    for (auto _ : state) {
        const Variant result = late::call(checker, u"ValidatePassword", {u"jsmith", password});
        if (!(result == Variant(0))) state.SkipWithError("the password was refused");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(validator)->Name("Validator.ValidatePassword, late bound")->UseRealTime();

}  // namespace
}  // namespace orvo
