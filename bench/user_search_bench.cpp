// A search for 1,000 users into a record set, in directories of 1,000 and 10,000, beside the raw
// LDAP client that decodes the same five attributes into texts. In each round the raw client runs
// first and the search after it, so that both see the same machine; "rate_to_raw" is how many
// searches are done in the time of one raw reading, "raw_cpu_ms" and "own_cpu_ms" are this
// process's processor time for one. The provider orders its rows, for which it reads all users; the
// raw client reads them all as well, in the order of the server.

#include <benchmark/benchmark.h>

#include <chrono>

#include "bench/big_shop.h"
#include "bench/counted_work.h"
#include "bench/raw_search.h"
#include "platform/interfaces/call.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "platform/values/values.h"
#include "suite/directory/ldap/provider/LdapSearch.h"

namespace orvo {
namespace {

using std::chrono::steady_clock;

constexpr std::int32_t rows_wanted = 1000;

// How many rows the raw client reads.
std::size_t raw_rows(const RawConnection& raw) {
    const auto rows = raw_search(raw, "(objectClass=orvoPerson)",
                                 {"CN", "BusinessPartnerID", "mail", "givenName", "sn"});
    return rows ? rows->size() : 0;
}

std::int64_t provider_search(directory::ldap::LdapSearch& search) {
    Text filter = u"(objectClass=orvoPerson)";
    Variant attributes = Values{u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"};
    const auto rows = Ref<RecordSet>::from(search.Execute(filter, attributes, rows_wanted));
    return call<&RecordSet::RecordCount>(rows);
}

void user_search(benchmark::State& state) {
    const PrivateSlapd& server = shop_of(state.range(0));
    const RawConnection raw = raw_connection(server.url());
    directory::ldap::LdapSearch search;
    Text address = from_utf8(server.server()), container = u"ou=Users,o=Shop";
    Text user = from_utf8(server.service_dn());
    Secret password = Secret::of_bytes(server.service_password());
    search.Connect(address, container, user, password);
    if (!raw_bind(raw, server.service_dn(), server.service_password()) ||
        provider_search(search) != rows_wanted)
        return state.SkipWithError("no rows");

    std::chrono::duration<double> raw_time{}, own_time{};
    double raw_processor = 0, own_processor = 0;
    for (auto _ : state) {
        const double before = processor_time();
        const auto begin = steady_clock::now();
        if (raw_rows(raw) != static_cast<std::size_t>(state.range(0)))
            state.SkipWithError("the raw client did not find all users");
        const auto middle = steady_clock::now();
        const double between = processor_time();
        if (provider_search(search) != rows_wanted) state.SkipWithError("rows are missing");
        const std::chrono::duration<double> own = steady_clock::now() - middle;
        own_processor += processor_time() - between;
        raw_processor += between - before;
        raw_time += middle - begin;
        own_time += own;
        state.SetIterationTime(own.count());
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["raw_ms"] = raw_time.count() / rounds * 1000;
    state.counters["raw_cpu_ms"] = raw_processor / rounds * 1000;
    state.counters["own_cpu_ms"] = own_processor / rounds * 1000;
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
