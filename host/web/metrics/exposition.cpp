#include "host/web/metrics/exposition.h"

#include <array>
#include <charconv>
#include <cmath>

namespace orvo::web {
namespace {

std::string_view name_of(MetricType type) {
    switch (type) {
        case MetricType::counter:
            return "counter";
        case MetricType::gauge:
            return "gauge";
        case MetricType::histogram:
            return "histogram";
        case MetricType::summary:
            return "summary";
    }
    return "untyped";
}

void append_escaped(std::string& text, std::string_view plain, bool is_label) {
    for (const char c : plain) {
        if (c == '\n')
            text += "\\n";
        else if (c == '\\' || (is_label && c == '"'))
            (text += '\\') += c;
        else
            text += c;
    }
}

template <class... Number>
std::string shortest(Number... number) {
    std::array<char, 32> digits;
    return {digits.data(),
            std::to_chars(digits.data(), digits.data() + digits.size(), number...).ptr};
}

std::string text_of(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? "+Inf" : "-Inf";
    return shortest(value);
}

}  // namespace

void Exposition::family(std::string_view name, MetricType type, std::string_view help) {
    name_ = name;
    ((text_ += "# HELP ") += name) += ' ';
    append_escaped(text_, help, false);
    (((text_ += "\n# TYPE ") += name) += ' ') += name_of(type);
    text_ += '\n';
}

void Exposition::sample(double value, const MetricLabels& labels) {
    line("", labels, text_of(value));
}

void Exposition::sample(std::uint64_t value, const MetricLabels& labels) {
    line("", labels, shortest(value));
}

void Exposition::sample(const DurationHistogram::Reading& reading, const MetricLabels& labels) {
    std::uint64_t up_to_here = 0;
    MetricLabels all = labels;
    all.emplace_back("le", "");
    for (std::size_t i = 0; i < reading.buckets.size(); ++i) {
        const bool is_last = i == DurationHistogram::bounds.size();
        const std::string bound =
            is_last ? "+Inf" : shortest(DurationHistogram::bounds[i], std::chars_format::general);
        all.back().second = bound;
        line("_bucket", all, shortest(up_to_here += reading.buckets[i]));
    }
    sample(up_to_here, reading.seconds, labels);
}

void Exposition::sample(std::uint64_t count, double sum, const MetricLabels& labels) {
    line("_sum", labels, text_of(sum));
    line("_count", labels, shortest(count));
}

void Exposition::line(std::string_view suffix, const MetricLabels& labels, std::string_view value) {
    (text_ += name_) += suffix;
    char before = '{';
    for (const auto& [name, text] : labels) {
        ((text_ += before) += name) += "=\"";
        append_escaped(text_, text, true);
        text_ += '"';
        before = ',';
    }
    if (!labels.empty()) text_ += '}';
    ((text_ += ' ') += value) += '\n';
}

}  // namespace orvo::web
