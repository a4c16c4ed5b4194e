#include "suite/directory/filters/filter_split.h"

#include <algorithm>

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

class Splitter {
public:
    explicit Splitter(const std::function<bool(const Filter&)>& is_kept) : is_kept_(is_kept) {}

    bool holds_kept(const Filter& filter) const {
        if (filter.kind > Kind::negation) return is_kept_(filter);
        return std::any_of(filter.parts.begin(), filter.parts.end(),
                           [this](const Filter& part) { return holds_kept(part); });
    }

    // A filter that is true wherever `filter` is, or, where it is denied, wherever it is false.
    // Nothing for one that is true of all.
    std::optional<Filter> weakened(const Filter& filter, bool denied) const {
        if (!holds_kept(filter)) {
            if (!denied) return filter;
            return Filter{.kind = Kind::negation, .parts = {filter}};
        }
        if (filter.kind == Kind::negation) return weakened(filter.parts.front(), !denied);
        if (filter.kind < Kind::negation)
            return (filter.kind == Kind::all_of) != denied ? weakened_all(filter, denied)
                                                           : weakened_any(filter, denied);
        if (denied) return std::nullopt;  // an entry without the attribute counts as well
        return Filter{.kind = Kind::presence, .attribute = filter.attribute};
    }

    // The conditions that all have to hold and that the server does not answer.
    void append_kept(const Filter& filter, std::vector<Filter>& kept) const {
        if (!holds_kept(filter)) return;
        if (filter.kind != Kind::all_of) return kept.push_back(filter);
        for (const Filter& part : filter.parts) append_kept(part, kept);
    }

private:
    std::optional<Filter> weakened_all(const Filter& filter, bool denied) const {
        Filter result{.kind = Kind::all_of};
        for (const Filter& part : filter.parts)
            if (std::optional<Filter> weaker = weakened(part, denied))
                result.parts.push_back(std::move(*weaker));
        if (result.parts.empty()) return std::nullopt;
        return result;
    }
    std::optional<Filter> weakened_any(const Filter& filter, bool denied) const {
        Filter result{.kind = Kind::any_of};
        for (const Filter& part : filter.parts) {
            std::optional<Filter> weaker = weakened(part, denied);
            if (!weaker) return std::nullopt;
            result.parts.push_back(std::move(*weaker));
        }
        return result;
    }

    const std::function<bool(const Filter&)>& is_kept_;
};

void append_attributes(const Filter& filter, std::vector<std::string>& names) {
    for (const Filter& part : filter.parts) append_attributes(part, names);
    if (!filter.attribute.empty() &&
        std::find(names.begin(), names.end(), filter.attribute) == names.end())
        names.push_back(filter.attribute);
}

}  // namespace

SplitFilter split(const Filter& filter, const std::function<bool(const Filter& item)>& is_kept) {
    const Splitter splitter(is_kept);
    if (!splitter.holds_kept(filter)) return {filter, std::nullopt, {}};
    SplitFilter result;
    result.sent = splitter.weakened(filter, false)
                      .value_or(Filter{.kind = Kind::presence, .attribute = "objectClass"});
    Filter kept{.kind = Kind::all_of};
    splitter.append_kept(filter, kept.parts);
    append_attributes(kept, result.attributes);
    result.kept = std::move(kept);
    return result;
}

}  // namespace orvo::directory
