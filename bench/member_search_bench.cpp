// A list of 1,000 users through the container, who are all there are, beside the raw client and
// beside python-ldap, both on kept connections and decoding the same five attributes into texts.
// Rounds alternate; "rate_to_raw" and "rate_to_python" are how many lists are read in the time of
// one of the others'. Python runs in a process of its own that measures itself, without its start.

#include "bench/big_shop.h"
#include "bench/raw_search.h"
#include "bench/three_clients.h"

namespace orvo {
namespace {

constexpr std::size_t rows_wanted = 1000;
// Three users of the shop have no type and are in no list.
constexpr std::int64_t users = rows_wanted + 3;
constexpr const char* filter = "(&(objectClass=orvoPerson)(OrvoUserType=*))";

struct Searcher {
    PrivateSlapd& shop = shop_of(users);
    RawConnection raw = raw_connection(shop.url());
    Object members = bound_members(shop);
    bool is_wrong = !raw_bind(raw, shop.service_dn(), shop.service_password());

    void search_raw() {
        const auto rows =
            raw_search(raw, filter, {"CN", "BusinessPartnerID", "mail", "givenName", "sn"});
        is_wrong |= !rows || rows->size() != rows_wanted;
    }
    void search() {
        const Object rows = late::call(members, u"GetOrvoUsers", {Object()}).to<Object>();
        is_wrong |= late::get(rows, u"RecordCount").to<std::int32_t>() != rows_wanted;
    }
};

void member_search(benchmark::State& state) {
    PythonClient python("member_search.py", shop_of(users), filter);
    take_turns<Searcher>(state, benchmark::kMillisecond, 5, shop_of(users), python,
                         &Searcher::search_raw, &Searcher::search);
    if (python.rows() != rows_wanted) state.SkipWithError("rows are missing");
}
BENCHMARK(member_search)
    ->Name("GetOrvoUsers, 1,000 rows; raw and python-ldap: kept connections")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
