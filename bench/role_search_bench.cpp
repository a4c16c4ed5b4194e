// The role search over 10,000 users, beside the raw client and beside python-ldap, which do the
// same three searches on kept connections and decode the same attributes into texts: the profiles
// with the role, their users without roles of their own, the users with the role. Rounds alternate;
// "rate_to_raw" and "rate_to_python" are how many role searches are done in the time of one of the
// others'. Python runs in a process of its own that measures itself, without its start. The
// component's searches are ordered by name and end at 1,000 rows each, for which the provider reads
// all that match; so do the others: "raw_rows" is how many they find, "rows" how many the component
// answers.

#include "bench/big_shop.h"
#include "bench/raw_search.h"
#include "bench/three_clients.h"

namespace orvo {
namespace {

constexpr std::int64_t users = 10'000;

// A role that few have, one that profiles give to many, and one that nobody has.
constexpr std::int16_t few = 22, many = 2, none = 99;

struct Searcher {
    PrivateSlapd& shop = shop_of(users);
    RawConnection raw = raw_connection(shop.url());
    Object members = bound_members(shop);
    bool is_wrong = !raw_bind(raw, shop.service_dn(), shop.service_password());
    std::size_t raw_rows = 0;
    std::int64_t own_rows = 0;

    void search_raw(std::int16_t role) {
        const std::string number = std::to_string(role);
        const std::string selection = "(objectClass=orvoPerson)(!(OrvoUserType=0))";
        raw_rows = 0;
        std::string profiles;
        LDAPMessage* found = nullptr;
        const char* name_only[] = {"cn", nullptr};
        is_wrong |=
            ldap_search_ext_s(raw.get(), "ou=Profiles,o=Shop", LDAP_SCOPE_SUBTREE,
                              ("(&(objectClass=orvoProfile)(OrvoRole=" + number + "))").c_str(),
                              const_cast<char**>(name_only), 0, nullptr, nullptr, nullptr,
                              LDAP_NO_LIMIT, &found) != LDAP_SUCCESS;
        for (LDAPMessage* entry = ldap_first_entry(raw.get(), found); entry;
             entry = ldap_next_entry(raw.get(), entry)) {
            RawRow row;
            raw_decode(raw.get(), entry, row);
            profiles += "(ProfileCN=" + row.at(0) + ")";
        }
        ldap_msgfree(found);
        if (!profiles.empty())
            count("(&" + selection + "(|" + profiles + "))",
                  {"cn", "BusinessPartnerID", "mail", "givenName", "sn", "orvorole"});
        count("(&(OrvoRole=" + number + ")" + selection + ")",
              {"CN", "BusinessPartnerID", "mail", "givenName", "sn"});
    }
    void count(const std::string& filter, std::vector<const char*> attributes) {
        const auto rows = raw_search(raw, filter, std::move(attributes));
        is_wrong |= !rows;
        if (rows) raw_rows += rows->size();
    }
    void search(std::int16_t role) {
        const Object rows = late::call(members, u"GetOrvoMembersHavingRole", {role}).to<Object>();
        own_rows = late::get(rows, u"RecordCount").to<std::int32_t>();
    }
};

void role_search(benchmark::State& state) {
    const auto role = static_cast<std::int16_t>(state.range(0));
    PythonClient python("role_search.py", shop_of(users), std::to_string(role));
    std::size_t raw_rows = 0;
    std::int64_t own_rows = 0;
    take_turns<Searcher>(
        state, benchmark::kMillisecond, 1, shop_of(users), python,
        [&](Searcher& searcher) {
            searcher.search_raw(role);
            raw_rows = searcher.raw_rows;
        },
        [&](Searcher& searcher) {
            searcher.search(role);
            own_rows = searcher.own_rows;
        });
    if (python.rows() != raw_rows) state.SkipWithError("python-ldap finds other rows");
    state.counters["rows"] = static_cast<double>(own_rows);
    state.counters["raw_rows"] = static_cast<double>(raw_rows);
}
BENCHMARK(role_search)
    ->Name("GetOrvoMembersHavingRole, 10,000 users; raw and python-ldap: the same searches; role")
    ->ArgName("")
    ->Arg(few)
    ->Arg(many)
    ->Arg(none)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
