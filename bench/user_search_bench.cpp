// A search for 1,000 users into a record set, in directories of 1,000 and 10,000, beside the raw
// LDAP client that decodes the same five attributes into texts. In each round the raw client runs
// first and the search after it, so that both see the same machine; "rate_to_raw" is how many
// searches are done in the time of one raw reading. The provider orders its rows, for which it
// reads all users; the raw client reads them all as well, in the order of the server.

#include <benchmark/benchmark.h>
#include <ldap.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <vector>

#include "platform/abi/call.h"
#include "platform/automation/values.h"
#include "platform/recordset/contract.h"
#include "suite/directory/ldap/LdapSearch.h"
#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

using std::chrono::steady_clock;

constexpr std::int32_t rows_wanted = 1000;

// A server with so many users; the service account may read all of them in one answer.
PrivateSlapd& directory(std::int64_t users) {
    static PrivateSlapd* started = nullptr;
    static std::int64_t started_users = 0;
    static std::unique_ptr<PrivateSlapd> slapd;
    if (started && started_users == users) return *started;
    slapd.reset();
    const TempFolder folder;
    const auto file = folder.path() / "shop.ldif";
    std::ofstream(file) << output_of(
        {ORVO_SOURCE_DIR "/examples/directory/make-shop", "--users", std::to_string(users)});
    slapd = std::make_unique<PrivateSlapd>(
        SlapdOptions{.config = "limits dn.exact=cn=orvo-service,ou=Services,o=Shop size=unlimited",
                     .shop = file});
    started = slapd.get();
    started_users = users;
    return *slapd;
}

struct Unbind {
    void operator()(LDAP* handle) const { ldap_unbind_ext_s(handle, nullptr, nullptr); }
};
using Connection = std::unique_ptr<LDAP, Unbind>;

Connection raw_connection(const PrivateSlapd& server) {
    LDAP* handle = nullptr;
    ldap_initialize(&handle, server.url().c_str());
    Connection connection(handle);
    const int version = LDAP_VERSION3;
    ldap_set_option(handle, LDAP_OPT_PROTOCOL_VERSION, &version);
    std::string password = server.service_password();
    berval credentials{password.size(), password.data()};
    if (ldap_sasl_bind_s(handle, server.service_dn().c_str(), LDAP_SASL_SIMPLE, &credentials,
                         nullptr, nullptr, nullptr) != LDAP_SUCCESS)
        connection.reset();
    return connection;
}

// The attributes of one entry, in the server's order, as texts.
void read_entry(LDAP* handle, LDAPMessage* message, std::vector<std::string>& row) {
    BerElement* decoder = nullptr;
    berval name{};
    ldap_get_dn_ber(handle, message, &decoder, &name);
    row.clear();
    for (;;) {
        berval attribute{};
        berval* values = nullptr;
        if (ldap_get_attribute_ber(handle, message, decoder, &attribute, &values) != LDAP_SUCCESS ||
            !attribute.bv_val)
            break;
        for (const berval* value = values; value && value->bv_val; ++value)
            row.emplace_back(value->bv_val, value->bv_len);
        ber_memfree(values);
    }
    ber_free(decoder, 0);
}

// Reads all users; how many rows there are.
std::size_t raw_search(LDAP* handle) {
    const char* attributes[] = {"CN", "BusinessPartnerID", "mail", "givenName", "sn", nullptr};
    int request = -1;
    ldap_search_ext(handle, "ou=Users,o=Shop", LDAP_SCOPE_SUBTREE, "(objectClass=orvoPerson)",
                    const_cast<char**>(attributes), 0, nullptr, nullptr, nullptr, LDAP_NO_LIMIT,
                    &request);
    std::vector<std::vector<std::string>> rows;
    for (;;) {
        LDAPMessage* message = nullptr;
        const int type = ldap_result(handle, request, LDAP_MSG_ONE, nullptr, &message);
        if (type == LDAP_RES_SEARCH_ENTRY) read_entry(handle, message, rows.emplace_back());
        ldap_msgfree(message);
        if (type != LDAP_RES_SEARCH_ENTRY) return type < 0 ? 0 : rows.size();
    }
}

std::int64_t provider_search(directory::ldap::LdapSearch& search) {
    Text filter = u"(objectClass=orvoPerson)";
    Variant attributes = Values{u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"};
    const auto rows = Ref<RecordSet>::from(search.Execute(filter, attributes, rows_wanted));
    return call<&RecordSet::RecordCount>(rows);
}

void user_search(benchmark::State& state) {
    PrivateSlapd& server = directory(state.range(0));
    const Connection raw = raw_connection(server);
    directory::ldap::LdapSearch search;
    Text address = from_utf8(server.server()), container = u"ou=Users,o=Shop";
    Text user = from_utf8(server.service_dn()), password = from_utf8(server.service_password());
    search.Connect(address, container, user, password);
    if (!raw || provider_search(search) != rows_wanted) return state.SkipWithError("no rows");

    std::chrono::duration<double> raw_time{}, own_time{};
    for (auto _ : state) {
        const auto begin = steady_clock::now();
        if (raw_search(raw.get()) != static_cast<std::size_t>(state.range(0)))
            state.SkipWithError("the raw client did not find all users");
        const auto middle = steady_clock::now();
        if (provider_search(search) != rows_wanted) state.SkipWithError("rows are missing");
        const std::chrono::duration<double> own = steady_clock::now() - middle;
        raw_time += middle - begin;
        own_time += own;
        state.SetIterationTime(own.count());
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["raw_ms"] = raw_time.count() / rounds * 1000;
    state.counters["rate_to_raw"] = raw_time.count() / own_time.count();
}
BENCHMARK(user_search)
    ->Name("DirectorySearch.Execute, 1,000 rows, beside the raw client; users")
    ->ArgName("")
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
