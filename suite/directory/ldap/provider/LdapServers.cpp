#include "suite/directory/ldap/provider/LdapServers.h"

#include <algorithm>
#include <array>
#include <charconv>

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

std::vector<Text> operation_columns() {
    std::vector<Text> columns{u"Server", u"Operation", u"Count", u"Failures", u"Seconds"};
    for (const double bound : DurationHistogram::bounds) {
        std::array<char, 32> digits;
        const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), bound,
                                        std::chars_format::general)
                              .ptr;
        columns.push_back(from_utf8({digits.data(), end}));
    }
    return columns;
}

// Of what was never done there is no row.
void add_operation(RecordSetBuilder& builder, std::string_view server, std::string_view operation,
                   const DurationHistogram& durations, const Counter& failures) {
    const DurationHistogram::Reading read = durations.reading();
    if (read.count() == 0) return;
    std::vector<Variant> row{from_utf8(server), from_utf8(operation),
                             static_cast<double>(read.count()),
                             static_cast<double>(failures.value()), read.seconds};
    std::uint64_t up_to_here = 0;
    for (std::size_t i = 0; i < DurationHistogram::bounds.size(); ++i)
        row.emplace_back(static_cast<double>(up_to_here += read.buckets[i]));
    builder.add(std::move(row));
}

std::vector<ServerState> sorted(std::vector<ServerState> states) {
    std::ranges::sort(states, {}, &ServerState::url);
    return states;
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
    const std::vector<ServerState> states = sorted(client_.servers().states());
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

Object LdapServers::Operations() {
    RecordSetBuilder builder(operation_columns());
    const PlaceWaits& waits = client_.pool().waits();
    add_operation(builder, "", "wait", waits.durations, waits.failures);
    for (const ServerState& state : sorted(client_.servers().states())) {
        const auto& kinds = state.figures->kinds();
        for (std::size_t i = 0; i < kinds.size(); ++i)
            add_operation(builder, state.url, operation_names[i], kinds[i].durations,
                          kinds[i].failures);
    }
    return builder.open().object();
}

Object LdapServers::Counts() {
    RecordSetBuilder builder({u"Name", u"Of", u"Value"});
    const auto add = [&](TextView name, TextView of, auto value) {
        builder.add({Text(name), Text(of), static_cast<double>(value)});
    };
    for (const ServerState& state : sorted(client_.servers().states())) {
        add(u"retries", from_utf8(state.url), state.figures->retries.value());
        add(u"failovers", from_utf8(state.url), state.figures->failovers.value());
    }
    ConnectionSet::Counts of_users{}, of_checks{};
    for (const ConnectionSetRef& set : client_.pool().all_sets()) {
        const bool is_user = set->use() == ConnectionSet::Use::as_user;
        ConnectionSet::Counts& all = is_user ? of_users : of_checks;
        const ConnectionSet::Counts counts = set->counts();
        all.in_use += counts.in_use;
        all.idle += counts.idle;
        all.waiting += counts.waiting;
    }
    for (const auto& [of, counts] :
         {std::pair(TextView(u"user"), of_users), std::pair(TextView(u"checks"), of_checks)}) {
        add(u"in use", of, counts.in_use);
        add(u"idle", of, counts.idle);
        add(u"waiting", of, counts.waiting);
    }
    const EntryCache::Counts cache = client_.cache().counts();
    add(u"cache hits", u"", cache.hits);
    add(u"cache misses", u"", cache.misses);
    add(u"cache entries", u"", cache.entries);
    return builder.open().object();
}

}  // namespace orvo::directory::ldap
