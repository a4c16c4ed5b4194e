#include "host/web/administration/directory_metrics.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "host/web/administration/record_rows.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "suite/store/site_store.h"

namespace orvo::web {
namespace {

constexpr std::size_t most_servers = 50;

std::string text_of(const Variant& value) { return to_utf8(value.to<Text>()); }

// The servers, of which nothing else is told.
std::vector<std::string> write_states(Exposition& out, const Object& servers) {
    RecordRows states = RecordRows::read(late::call(servers, u"States").to<Object>());
    constexpr std::size_t server = 0, state = 1, operations = 5, failures = 6, latency = 7;
    states.rows.resize(std::min(states.rows.size(), most_servers));
    std::vector<std::string> urls;
    for (const auto& row : states.rows) urls.push_back(text_of(row[server]));

    out.family("orvo_directory_server_state", MetricType::gauge,
               "1 for the state that the server is in, 0 for the others.");
    for (std::size_t i = 0; i < urls.size(); ++i)
        for (const char* name : {"up", "suspected", "down"})
            out.sample(std::uint64_t{text_of(states.rows[i][state]) == name},
                       {{"server", urls[i]}, {"state", name}});
    const auto write = [&](std::string_view name, MetricType type, std::string_view help,
                           std::size_t column, double unit) {
        out.family(name, type, help);
        for (std::size_t i = 0; i < urls.size(); ++i)
            out.sample(states.rows[i][column].to<double>() * unit, {{"server", urls[i]}});
    };
    write("orvo_directory_answers_total", MetricType::counter,
          "Operations that the server has answered, whatever the answer.", operations, 1);
    write("orvo_directory_failures_total", MetricType::counter,
          "Operations that it has not answered, or with \"busy\" or \"unavailable\".", failures, 1);
    write("orvo_directory_latency_seconds", MetricType::gauge, "Mean time of the latest answers.",
          latency, 0.001);
    return urls;
}

// The buckets of a row, from how many took no longer than each of the bounds.
std::optional<DurationHistogram::Reading> reading_of(const std::vector<Variant>& row) {
    constexpr std::size_t count = 2, seconds = 4, first_bound = 5;
    if (row.size() != first_bound + DurationHistogram::bounds.size()) return std::nullopt;
    DurationHistogram::Reading reading{.seconds = row[seconds].to<double>()};
    std::uint64_t before = 0;
    for (std::size_t i = 0; i < reading.buckets.size(); ++i) {
        const bool is_last = i == DurationHistogram::bounds.size();
        const auto up_to_here =
            static_cast<std::uint64_t>(row[is_last ? count : first_bound + i].to<double>());
        reading.buckets[i] = up_to_here - std::exchange(before, up_to_here);
    }
    return reading;
}

void write_operations(Exposition& out, const Object& servers,
                      const std::vector<std::string>& urls) {
    const RecordRows rows = RecordRows::read(late::call(servers, u"Operations").to<Object>());
    constexpr std::size_t server = 0, operation = 1, failures = 3;
    const auto is_told = [&](const std::vector<Variant>& row) {
        return std::ranges::find(urls, text_of(row[server])) != urls.end();
    };
    out.family("orvo_directory_operation_duration_seconds", MetricType::histogram,
               "Time of operations on the directory's servers, from the request to the whole "
               "answer.");
    for (const auto& row : rows.rows)
        if (const auto reading = reading_of(row); reading && is_told(row))
            out.sample(*reading,
                       {{"server", text_of(row[server])}, {"operation", text_of(row[operation])}});
    out.family("orvo_directory_operation_failures_total", MetricType::counter,
               "Of these, without an answer, or with \"busy\" or \"unavailable\".");
    for (const auto& row : rows.rows)
        if (is_told(row))
            out.sample(row[failures].to<double>(),
                       {{"server", text_of(row[server])}, {"operation", text_of(row[operation])}});
    const auto waits = std::ranges::find_if(
        rows.rows, [](const auto& row) { return row[operation].template to<Text>() == u"wait"; });
    const bool has_waited = waits != rows.rows.end();
    out.family("orvo_directory_connection_wait_seconds", MetricType::histogram,
               "Time that operations have waited for a connection, of those that had to.");
    const auto reading = has_waited ? reading_of(*waits) : std::nullopt;
    out.sample(reading.value_or(DurationHistogram::Reading{}));
    out.family("orvo_directory_connection_wait_failures_total", MetricType::counter,
               "Of these, those for which none became free in time.");
    out.sample(has_waited ? (*waits)[failures].to<double>() : 0);
}

// What is named and of what it is, with its number.
struct Counted {
    std::string name;
    std::string of;
    double value;
};

std::vector<Counted> counted(const Object& record_set) {
    std::vector<Counted> all;
    for (const auto& row : RecordRows::read(record_set).rows)
        all.push_back({text_of(row[0]), text_of(row[1]), row[2].to<double>()});
    return all;
}

double value_of(const std::vector<Counted>& all, std::string_view name, std::string_view of) {
    const auto found = std::ranges::find_if(
        all, [&](const Counted& one) { return one.name == name && one.of == of; });
    return found == all.end() ? 0 : found->value;
}

void write_counts(Exposition& out, const Object& servers, const std::vector<std::string>& urls) {
    const auto all = counted(late::call(servers, u"Counts").to<Object>());
    out.family("orvo_directory_retries_total", MetricType::counter,
               "Operations that were tried again after the server had failed them.");
    for (const std::string& url : urls)
        out.sample(value_of(all, "retries", url), {{"server", url}});
    out.family("orvo_directory_failovers_total", MetricType::counter,
               "Operations and connections that went on to another server after this one.");
    for (const std::string& url : urls)
        out.sample(value_of(all, "failovers", url), {{"server", url}});
    out.family("orvo_directory_connections", MetricType::gauge,
               "Connections to the directory, of users and of password checks.");
    for (const char* use : {"user", "checks"}) {
        out.sample(value_of(all, "in use", use), {{"use", use}, {"state", "in_use"}});
        out.sample(value_of(all, "idle", use), {{"use", use}, {"state", "idle"}});
    }
    out.family("orvo_directory_connections_waited_for", MetricType::gauge,
               "Operations that wait for a connection.");
    for (const char* use : {"user", "checks"})
        out.sample(value_of(all, "waiting", use), {{"use", use}});
    out.family("orvo_directory_cache_lookups_total", MetricType::counter,
               "Entries that were looked for among those that are kept.");
    out.sample(value_of(all, "cache hits", ""), {{"result", "hit"}});
    out.sample(value_of(all, "cache misses", ""), {{"result", "miss"}});
    out.family("orvo_directory_cache_entries", MetricType::gauge, "Entries that are kept.");
    out.sample(value_of(all, "cache entries", ""));
}

void write_logins(Exposition& out, const Object& counters) {
    const auto all = counted(late::call(counters, u"Rows").to<Object>());
    out.family("orvo_logins_total", MetricType::counter,
               "Password checks, by their outcome; failure: the directory has not told.");
    for (const char* outcome : {"right", "wrong", "locked", "disabled", "expired",
                                "too many failures", "throttled", "failure"})
        out.sample(value_of(all, "logins", outcome), {{"outcome", outcome}});
    out.family("orvo_filter_events_total", MetricType::counter,
               "Logins that the authorization filter began and that were ended by somebody, and "
               "pages that it has refused to who is logged in.");
    for (const char* event : {"login", "logout", "refusal"})
        out.sample(value_of(all, "filter", event), {{"event", event}});
}

// Of a site without a throttle: nothing.
void write_throttle(Exposition& out) {
    const Object throttle = create_object(u"OrvoSuite.Throttle");
    const auto row = RecordRows::read(late::call(throttle, u"Figures").to<Object>()).rows.at(0);
    enum Column { admitted, delayed, refused, wrong, waiting };
    const auto write = [&](std::string_view name, MetricType type, std::string_view help,
                           Column column) {
        out.family(name, type, help);
        out.sample(row[column].to<double>());
    };
    write("orvo_throttle_admitted_total", MetricType::counter,
          "Password checks that the throttle has let through to the directory.", admitted);
    write("orvo_throttle_delayed_total", MetricType::counter, "Of these, after a wait.", delayed);
    write("orvo_throttle_wrong_total", MetricType::counter,
          "Of these, those that came to a wrong password.", wrong);
    write("orvo_throttle_refused_total", MetricType::counter,
          "Password checks that it has refused without asking the directory.", refused);
    write("orvo_throttle_waiting", MetricType::gauge, "Password checks that wait now.", waiting);
}

// As the columns of Counters::Store. Of a site without a shared store: reachable, and never asked.
using StoreFigures = std::array<double, 8>;
constexpr StoreFigures without_store{1};

StoreFigures store_of_host() {
    const auto site = store::site_store();
    if (!site) return without_store;
    const auto number = [](auto count) { return static_cast<double>(count); };
    const store::Redis::Counts counts = site->redis->counts();
    return {number(site->redis->is_reachable()),
            number(counts.commands),
            number(counts.failures),
            number(counts.connects),
            number(counts.failovers),
            number(counts.connections),
            number(counts.in_use),
            number(counts.total_time.count()) / 1e6};
}

StoreFigures store_of_suite(const Object& counters) {
    const auto rows = RecordRows::read(late::call(counters, u"Store").to<Object>()).rows;
    if (rows.empty()) return without_store;
    StoreFigures figures;
    for (std::size_t i = 0; i < figures.size(); ++i)
        figures[i] = i == 0 ? rows[0][0].to<bool>() : rows[0].at(i).to<double>();
    return figures;
}

void write_store(Exposition& out, const Object& counters) {
    const StoreFigures sessions = store_of_host(), logins = store_of_suite(counters);
    const auto write = [&](std::string_view name, MetricType type, std::string_view help,
                           std::size_t column) {
        out.family(name, type, help);
        out.sample(sessions[column], {{"use", "sessions"}});
        out.sample(logins[column], {{"use", "logins"}});
    };
    write("orvo_store_reachable", MetricType::gauge,
          "1 unless the site has a shared store that cannot be reached.", 0);
    write("orvo_store_commands_total", MetricType::counter,
          "Commands to the shared store that were answered, or failed.", 1);
    write("orvo_store_failures_total", MetricType::counter,
          "Of these, those for which it was not to be reached, or refused for now.", 2);
    write("orvo_store_connects_total", MetricType::counter, "Connections that were made to it.", 3);
    write("orvo_store_failovers_total", MetricType::counter,
          "How often another master was found than before.", 4);
    write("orvo_store_connections", MetricType::gauge, "Connections to it.", 5);
    write("orvo_store_connections_in_use", MetricType::gauge, "Of these, those in use.", 6);
    write("orvo_store_command_seconds_total", MetricType::counter,
          "Time that all commands took together.", 7);
}

}  // namespace

void write_directory_metrics(Exposition& out) {
    const Object servers = create_object(u"OrvoDirectory.LdapServers");
    const std::vector<std::string> urls = write_states(out, servers);
    write_operations(out, servers, urls);
    write_counts(out, servers, urls);
    const Object counters = create_object(u"OrvoSuite.Counters");
    write_logins(out, counters);
    write_store(out, counters);
    write_throttle(out);
}

}  // namespace orvo::web
