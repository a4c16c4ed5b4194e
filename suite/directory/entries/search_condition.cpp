#include "suite/directory/entries/search_condition.h"

#include "suite/directory/entries/searched_entry.h"
#include "suite/directory/filters/matching_rule.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

bool is_listed(MatchingRule rule) {
    return rule == MatchingRule::case_ignore || rule == MatchingRule::case_exact;
}

bool is_answered_here(const Filter& item, const AttributeTypes& types) {
    if (item.kind != Kind::at_least && item.kind != Kind::at_most) return false;
    const bool is_for_a_page = item.value.find('!') != std::string::npos;
    const AttributeType* type = types.find(item.attribute);
    if (!type) return types.empty() && is_for_a_page;
    return is_listed(matching_rule_of(*type)) && (type->ordering.empty() || is_for_a_page);
}

}  // namespace

SplitFilter split_by_order(const Filter& filter, const AttributeTypes& types) {
    return split(filter, [&](const Filter& item) { return is_answered_here(item, types); });
}

std::optional<AttributeMatching> matching_of(std::string_view attribute,
                                             const AttributeTypes& types, Bounds bounds) {
    if (types.empty()) return AttributeMatching{.listed = bounds == Bounds::of_lists};
    const AttributeType* type = types.find(attribute);
    if (!type) return std::nullopt;
    const MatchingRule rule = matching_rule_of(*type);
    return AttributeMatching{rule, !type->ordering.empty(), !type->substrings.empty(),
                             bounds == Bounds::of_lists && is_listed(rule),
                             !type->equality.empty()};
}

SearchCondition::SearchCondition(const Filter& filter, const AttributeTypes& types)
    : types_(types), split_(split_by_order(filter, types)) {
    if (!split_.kept) return;
    matcher_.emplace_back(*split_.kept, [&types](std::string_view attribute) {
        return matching_of(attribute, types, Bounds::of_lists);
    });
    for (const Filter& part : split_.kept->parts)
        if (part.kind == Kind::at_least)
            bounds_.push_back({part.attribute, ListingBound(part.value)});
}

bool SearchCondition::is_true_of(const EntryData& entry) const {
    return matcher_.empty() || matcher_.front().matches(SearchedEntry(entry, types_));
}

bool SearchCondition::may_be_true_of(std::string_view name) {
    if (bounds_.empty()) return true;
    const NamingPart naming = naming_part(name);
    std::string key;
    for (Bound& bound : bounds_) {
        if (bound.naming_attribute != naming.attribute) {
            bound.naming_attribute = naming.attribute;
            bound.is_of_names = types_.same(naming.attribute, bound.attribute);
        }
        if (!bound.is_of_names) continue;
        if (key.empty()) key = listing_key(naming.value);
        if (!bound.bound.is_reached_by(key)) return false;
    }
    return true;
}

}  // namespace orvo::directory
