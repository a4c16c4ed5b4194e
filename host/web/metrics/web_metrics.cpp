#include "host/web/metrics/web_metrics.h"

#include <algorithm>
#include <array>

namespace orvo::web {
namespace {

std::size_t method_of(const HttpRequest& request) {
    constexpr std::array<std::string_view, 3> known{"GET", "HEAD", "POST"};
    return static_cast<std::size_t>(std::ranges::find(known, request.method) - known.begin());
}

std::size_t class_of(int status) {
    return static_cast<std::size_t>(std::clamp(status / 100, 1, 5) - 1);
}

std::size_t lane_of(const HttpRequest& request) {
    constexpr std::size_t refused = 5;
    return request.lane ? static_cast<std::size_t>(*request.lane) : refused;
}

}  // namespace

void WebMetrics::note_answer(const HttpRequest& request, const HttpResponse& response,
                             AnswerKind kind, std::chrono::nanoseconds took) noexcept {
    count(request, response);
    answers_.at(kind).observe(took);
}

void WebMetrics::count(const HttpRequest& request, const HttpResponse& response) noexcept {
    requests_.at(method_of(request), class_of(response.status), lane_of(request)).add();
}

void WebMetrics::note_page(PageOutcome outcome, std::chrono::nanoseconds took) noexcept {
    pages_.at(outcome).observe(took);
}

void WebMetrics::write(Exposition& out) const {
    requests_.write(out);
    answers_.write(out);
    pages_.write(out);
}

}  // namespace orvo::web
