#pragma once

// Figures of one name that are told apart by labels.

#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "host/web/metrics/exposition.h"

namespace orvo::web {

// A label and all the values that it may have: how many figures a family has is settled when it is
// made, whatever comes from outside.
struct MetricLabel {
    std::string_view name;
    std::vector<std::string_view> values;
};

// A figure (Counter, Gauge, DurationHistogram) for each combination of the labels' values. The
// figures may be changed by any thread while any other writes them. Texts are literals.
template <class Figure, std::size_t labels>
class MetricFamily {
public:
    MetricFamily(std::string_view name, std::string_view help,
                 std::array<MetricLabel, labels> described)
        : name_(name), help_(help), labels_(std::move(described)), figures_(count()) {}

    // By the positions of the labels' values, which an enumeration may be; a position that there is
    // not is a mistake of the caller's.
    template <class... Positions>
    Figure& at(Positions... positions) {
        static_assert(sizeof...(positions) == labels, "one position for each label");
        std::size_t index = 0, label = 0;
        ((index = index * labels_[label++].values.size() + static_cast<std::size_t>(positions)),
         ...);
        return figures_[index];
    }

    void write(Exposition& out) const {
        out.family(name_, type_of(static_cast<const Figure*>(nullptr)), help_);
        for (std::size_t i = 0; i < figures_.size(); ++i) write(out, figures_[i], labels_of(i));
    }

private:
    static MetricType type_of(const Counter*) { return MetricType::counter; }
    static MetricType type_of(const Gauge*) { return MetricType::gauge; }
    static MetricType type_of(const DurationHistogram*) { return MetricType::histogram; }
    static void write(Exposition& out, const Counter& figure, const MetricLabels& texts) {
        out.sample(figure.value(), texts);
    }
    static void write(Exposition& out, const Gauge& figure, const MetricLabels& texts) {
        out.sample(static_cast<double>(figure.value()), texts);
    }
    static void write(Exposition& out, const DurationHistogram& figure, const MetricLabels& texts) {
        out.sample(figure.reading(), texts);
    }

    std::size_t count() const {
        std::size_t all = 1;
        for (const MetricLabel& label : labels_) all *= label.values.size();
        return all;
    }
    MetricLabels labels_of(std::size_t index) const {
        MetricLabels texts(labels);
        for (std::size_t i = labels; i-- > 0;) {
            const MetricLabel& label = labels_[i];
            texts[i] = {label.name, label.values[index % label.values.size()]};
            index /= label.values.size();
        }
        return texts;
    }

    const std::string_view name_;
    const std::string_view help_;
    const std::array<MetricLabel, labels> labels_;
    std::vector<Figure> figures_;
};

}  // namespace orvo::web
