#include "suite/directory/ldap/pool/server_login.h"

#include "suite/directory/entries/login_name.h"

namespace orvo::directory::ldap {
namespace {

constexpr auto shortest_refresh = std::chrono::minutes(1);

}  // namespace

ServerLogin::ServerLogin(ConnectionPool& pool, TextView server, TextView user,
                         const Secret& password, const std::optional<Limits>& limits)
    : pool_(&pool),
      address_(ServerAddress::parse(server)),
      limits_(limits),
      presented_(password.clone()) {
    set_ = pool_->set_of(address_, login_name(user, *presented_), *presented_);
}

// Another object of the user may have changed the set's password since.
void ServerLogin::find_presented() {
    if (presented_ && !set_->has_password(*presented_))
        set_ = pool_->set_of(address_, set_->user(), *presented_);
}

std::shared_ptr<const ServerFacts> ServerLogin::facts() {
    const ServerRef server = set_->group().choose(pool_->settings().failback_after);
    const StoredFacts stored = server->facts();
    return stored.facts ? stored.facts : read_facts();
}

std::shared_ptr<const ServerFacts> ServerLogin::refreshed_facts() {
    const ServerRef server = set_->group().choose(pool_->settings().failback_after);
    const StoredFacts stored = server->facts();
    const bool is_recent = stored.facts && pool_->clock().now() - stored.read_at < shortest_refresh;
    return is_recent ? stored.facts : read_facts();
}

// What was not shown whole is not kept: other users would inherit it.
std::shared_ptr<const ServerFacts> ServerLogin::read_facts() {
    const FactsResult result =
        run_with_server({Effect::none, {}, limits_}, [](Session& session, const ServerRef& server) {
            FactsResult read = ldap::read_facts(session);
            if (read.is_whole) server->keep_facts(read.facts);
            return read;
        });
    check(result);
    return result.facts;
}

}  // namespace orvo::directory::ldap
