#pragma once

// What a site's requests are counted by.

#include <chrono>

#include "host/web/messages/http_message.h"
#include "host/web/metrics/family.h"

namespace orvo::web {

// What a request was answered with.
enum class AnswerKind { page, file, health, other };

// How the carrying out of a page ended.
enum class PageOutcome {
    done,
    failed,
    too_slow,  // it was stopped at its time limit
    refused,   // too many wait for the directory or for the session, or the session cannot be had
};

// Any thread. A request costs two of these calls, a page one more.
class WebMetrics {
public:
    void note_answer(const HttpRequest& request, const HttpResponse& response, AnswerKind kind,
                     std::chrono::nanoseconds took) noexcept;
    // The same without its time, for one that was refused before it was there as a whole.
    void count(const HttpRequest& request, const HttpResponse& response) noexcept;
    void note_page(PageOutcome outcome, std::chrono::nanoseconds took) noexcept;

    void write(Exposition& out) const;

private:
    MetricFamily<Counter, 3> requests_{
        "orvo_http_requests_total",
        "Requests that were answered, by method, class of the status, and who answered.",
        {MetricLabel{"method", {"GET", "HEAD", "POST", "other"}},
         MetricLabel{"status", {"1xx", "2xx", "3xx", "4xx", "5xx"}},
         // As enum Lane; refused: by the server itself.
         MetricLabel{"lane", {"page", "undecided", "directory", "at_once", "aside", "refused"}}}};
    MetricFamily<DurationHistogram, 1> answers_{
        "orvo_http_answer_duration_seconds",
        "Time from a whole request to its answer, without waiting for a worker or the browser.",
        {MetricLabel{"kind", {"page", "file", "health", "other"}}}};
    MetricFamily<DurationHistogram, 1> pages_{
        "orvo_page_duration_seconds",
        "Time that pages ran, by how that ended.",
        {MetricLabel{"outcome", {"done", "failed", "too_slow", "refused"}}}};
};

}  // namespace orvo::web
