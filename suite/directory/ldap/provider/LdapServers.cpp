#include "suite/directory/ldap/provider/LdapServers.h"

#include <algorithm>

#include "platform/objects/recordset/builder.h"
#include "platform/values/date.h"

namespace orvo::directory::ldap {
namespace {

TextView name_of(ServerState::Condition condition) {
    switch (condition) {
        case ServerState::Condition::up:
            return u"up";
        case ServerState::Condition::suspected:
            return u"suspected";
        case ServerState::Condition::down:
            return u"down";
    }
    return u"";
}

// Dates of another clock's times, which may be any: what counts is how far away they are from now.
class Dates {
public:
    explicit Dates(Clock::time_point now)
        : now_(now), since_epoch_(std::chrono::system_clock::now().time_since_epoch()) {}

    Date of(Clock::time_point time) const {
        constexpr double seconds_of_day = 86'400;
        const std::chrono::duration<double> since_epoch = since_epoch_ + (time - now_);
        return {date_from_parts({1970, 1, 1, 0, 0, 0}).days + since_epoch.count() / seconds_of_day};
    }

private:
    Clock::time_point now_;
    std::chrono::system_clock::duration since_epoch_;
};

}  // namespace

Object LdapServers::States() {
    std::vector<ServerState> states = client_.servers().states();
    std::ranges::sort(states, {}, &ServerState::url);
    const Dates dates(client_.pool().clock().now());
    RecordSetBuilder builder({u"Server", u"State", u"Reason", u"Since", u"NextProbe", u"Operations",
                              u"Failures", u"Latency"});
    for (const ServerState& state : states)
        builder.add({from_utf8(state.url), Text(name_of(state.condition)), from_utf8(state.reason),
                     dates.of(state.since),
                     state.next_probe ? Variant(dates.of(*state.next_probe)) : Variant(),
                     static_cast<double>(state.operations), static_cast<double>(state.failures),
                     static_cast<double>(state.latency.count()) / 1000});
    return builder.open().object();
}

Object LdapServers::Connections() {
    std::vector<ConnectionSetRef> sets = client_.pool().all_sets();
    std::ranges::sort(sets, {}, [](const ConnectionSetRef& set) { return set->user(); });
    RecordSetBuilder builder({u"User", u"Use", u"Servers", u"InUse", u"Idle", u"Waiting"});
    const auto number = [](std::size_t count) { return static_cast<std::int32_t>(count); };
    for (const ConnectionSetRef& set : sets) {
        Text servers;
        for (const ServerRef& server : set->group().servers())
            servers += (servers.empty() ? u"" : u" ") + from_utf8(server->url());
        const auto counts = set->counts();
        const bool is_user = set->use() == ConnectionSet::Use::as_user;
        builder.add({from_utf8(set->user()), Text(is_user ? u"user" : u"checks"), servers,
                     number(counts.in_use), number(counts.idle), number(counts.waiting)});
    }
    return builder.open().object();
}

std::int32_t LdapServers::ClearCache() {
    return static_cast<std::int32_t>(client_.cache().clear());
}

}  // namespace orvo::directory::ldap
