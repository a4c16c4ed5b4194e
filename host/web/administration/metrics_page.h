#pragma once

#include <functional>
#include <string>

#include "host/web/metrics/web_metrics.h"
#include "host/web/server/http_server.h"
#include "host/web/sessions/session_store.h"

namespace orvo::web {

// Where the figures of a host come from. All are asked on the thread that calls, and wait for
// nothing but shared_sessions, which asks the shared store.
struct MetricsSources {
    const WebMetrics& web;
    std::function<ServerCounts()> server;
    std::function<SessionCounts()> sessions;
    std::function<std::optional<SharedSessionCounts>()> shared_sessions;
    // What a source has failed with, for the log.
    std::function<void(const std::string& sentence)> trouble;
};

// The answer to who collects figures: all that the process counts, as Exposition writes it. It
// waits for no worker and no directory server, and for the shared store no longer than its time
// limit. Its size depends on the directory servers alone (some 30 kB, and 20 kB for each). A source
// that fails is left out, counted (orvo_metrics_failures_total) and told once in its words.
class MetricsPage {
public:
    explicit MetricsPage(MetricsSources sources) : sources_(std::move(sources)) {}

    // One thread at a time. Does not raise.
    HttpResponse answer();

private:
    const MetricsSources sources_;
    Counter failures_;
    std::string last_failure_;
};

}  // namespace orvo::web
