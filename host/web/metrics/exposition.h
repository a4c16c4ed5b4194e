#pragma once

// Figures as a text, in the form that Prometheus reads (text format 0.0.4).

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/values/metric.h"

namespace orvo::web {

enum class MetricType { counter, gauge, histogram, summary };

// In the order in which they are written.
using MetricLabels = std::vector<std::pair<std::string_view, std::string_view>>;

// Writes one family after the other; the samples of a family follow it. Names are ours and go out
// as they are; texts of labels and of the help may be any.
class Exposition {
public:
    static constexpr std::string_view content_type = "text/plain; version=0.0.4; charset=utf-8";

    void family(std::string_view name, MetricType type, std::string_view help);
    void sample(double value, const MetricLabels& labels = {});
    void sample(std::uint64_t value, const MetricLabels& labels = {});
    void sample(const DurationHistogram::Reading& reading, const MetricLabels& labels = {});
    // Of a summary without quantiles.
    void sample(std::uint64_t count, double sum, const MetricLabels& labels = {});

    const std::string& text() const { return text_; }

private:
    void line(std::string_view suffix, const MetricLabels& labels, std::string_view value);

    std::string name_;  // of the family
    std::string text_;
};

}  // namespace orvo::web
