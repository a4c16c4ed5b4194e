// A user created and deleted through the container, beside the raw client and beside python-ldap
// doing the same directory operations: add, set the password, read the new user and the account of
// its type, read the container, with which every deletion begins, and delete. Both keep their
// connection, or both connect and authenticate for the creation and again for the deletion. Rounds
// alternate; "rate_to_raw" and "rate_to_python" are how many users are created and deleted in the
// time of one of the others'. Python runs in a process of its own that measures itself, without its
// start.

#include "bench/big_shop.h"
#include "bench/provider_keeps.h"
#include "bench/raw_writes.h"
#include "bench/three_clients.h"

namespace orvo {
namespace {

// The new user, the account of its type and the container.
constexpr std::size_t entries_read = 3;

struct Creator {
    PrivateSlapd& shop = shop_of(1000);
    bool is_wrong = false;
    RawConnection kept = connected();
    Object members = bound_members(shop);

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

void create_and_delete(benchmark::State& state, Keeps keeps, void (Creator::*raw)(),
                       const char* python_connection) {
    PythonClient python("user_create.py", shop_of(1000), python_connection);
    const KeepsScope scope(keeps);
    take_turns<Creator>(state, benchmark::kMicrosecond, 20, shop_of(1000), python, raw,
                        &Creator::own);
    if (python.rows() != entries_read) state.SkipWithError("python-ldap reads other entries");
}

void pool_to_kept(benchmark::State& state) {
    create_and_delete(state, Keeps::connections, &Creator::raw_kept, "kept");
}
void pool_to_connecting(benchmark::State& state) {
    create_and_delete(state, Keeps::connections, &Creator::raw_connecting, "connecting");
}
void off_to_connecting(benchmark::State& state) {
    create_and_delete(state, Keeps::nothing, &Creator::raw_connecting, "connecting");
}
BENCHMARK(pool_to_kept)
    ->Name("CreateUser, DeleteUser, pool; raw and python-ldap: kept connection")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();
BENCHMARK(pool_to_connecting)
    ->Name("CreateUser, DeleteUser, pool; raw and python-ldap: connecting")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();
BENCHMARK(off_to_connecting)
    ->Name("CreateUser, DeleteUser, no pool; raw and python-ldap: connecting")
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
