#include "host/web/administration/metrics_page.h"

#include <array>
#include <utility>

#include "host/web/administration/directory_metrics.h"
#include "host/web/administration/process_metrics.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

void write_server(Exposition& out, const ServerCounts& counts) {
    out.family("orvo_http_connections", MetricType::gauge, "Connections of browsers.");
    out.sample(std::uint64_t{counts.connections});
    out.family("orvo_http_connections_refused_total", MetricType::counter,
               "Connections that were refused because there were too many, or too many of one "
               "address (behind a proxy: requests).");
    out.sample(counts.refused_in_all, {{"reason", "all"}});
    out.sample(counts.refused_of_one_address, {{"reason", "address"}});

    const WorkerPool::Counts& workers = counts.workers;
    constexpr std::array<const char*, 3> kinds{"page", "undecided", "directory"};
    const auto by_kind = [&](const auto& numbers) {
        for (std::size_t i = 0; i < kinds.size(); ++i)
            out.sample(static_cast<std::uint64_t>(numbers[i]), {{"lane", kinds[i]}});
    };
    out.family("orvo_workers", MetricType::gauge, "Threads that answer requests.");
    out.sample(std::uint64_t{workers.workers});
    out.family("orvo_worker_jobs_running", MetricType::gauge, "Requests that a worker answers.");
    by_kind(workers.running);
    out.family("orvo_worker_jobs_waiting", MetricType::gauge, "Requests that wait for a worker.");
    by_kind(workers.waiting);
    out.family("orvo_worker_jobs_refused_total", MetricType::counter,
               "Requests that were refused because too many waited.");
    by_kind(workers.refused);
    out.family("orvo_worker_jobs_turned_away_total", MetricType::counter,
               "Requests that were not to wait for the directory, as too many did.");
    out.sample(workers.turned_away);
}

void write_sessions(Exposition& out, const SessionCounts& counts) {
    if (counts.live) {
        out.family("orvo_sessions", MetricType::gauge, "Web sessions.");
        out.sample(*counts.live);
    }
    if (counts.bytes) {
        out.family("orvo_session_bytes", MetricType::gauge, "What their values take.");
        out.sample(*counts.bytes);
    }
    out.family("orvo_sessions_created_total", MetricType::counter, "Sessions that were begun.");
    out.sample(counts.created);
    out.family("orvo_sessions_ended_total", MetricType::counter,
               "Sessions that have ended: abandoned by a page, without requests for too long, "
               "after their lifetime, for newer ones, with the program.");
    constexpr std::array<const char*, 5> ends{"abandoned", "idle", "lifetime", "room", "closing"};
    for (std::size_t i = 0; i < ends.size(); ++i)
        out.sample(counts.ended[i], {{"reason", ends[i]}});
}

void write_shared_sessions(Exposition& out, const std::optional<SharedSessionCounts>& counts) {
    out.family("orvo_shared_sessions", MetricType::gauge,
               "Web sessions of all hosts together, in the shared store.");
    if (counts) out.sample(counts->live);
    out.family("orvo_shared_session_bytes", MetricType::gauge,
               "What they take there, as SessionMemory bounds it.");
    if (counts) out.sample(counts->bytes);
}

}  // namespace

HttpResponse MetricsPage::answer() {
    Exposition out;
    out.family("orvo_build_info", MetricType::gauge, "1, with the version of the program.");
    out.sample(std::uint64_t{1}, {{"version", ORVO_VERSION}});
    sources_.web.write(out);
    write_server(out, sources_.server());
    write_sessions(out, sources_.sessions());
    write_process_metrics(out);
    const auto note = [&](const std::string& reason) {
        failures_.add();
        if (reason == std::exchange(last_failure_, reason)) return;
        sources_.trouble("figures are missing: " + reason);
    };
    try {
        write_directory_metrics(out);
        write_shared_sessions(out, sources_.shared_sessions());
        last_failure_.clear();
    } catch (const Failure& failure) {
        note(to_utf8(failure.description));
    } catch (const std::exception& failure) {
        note(failure.what());
    }
    out.family("orvo_metrics_failures_total", MetricType::counter,
               "How often figures were missing here.");
    out.sample(failures_.value());

    HttpResponse response;
    response.content_type = Exposition::content_type;
    response.headers = {{"Cache-Control", "no-store"}};
    response.body = out.text();
    return response;
}

}  // namespace orvo::web
