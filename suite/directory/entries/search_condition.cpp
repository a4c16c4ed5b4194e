#include "suite/directory/entries/search_condition.h"

#include "suite/directory/entries/entry_order.h"
#include "suite/directory/filters/matching_rule.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

MatchingRule rule_of(const AttributeType& type) {
    return try_matching_rule(type.equality).value_or(matching_rule_of(type.syntax));
}

bool is_listed(MatchingRule rule) {
    return rule == MatchingRule::case_ignore || rule == MatchingRule::case_exact;
}

bool is_answered_here(const Filter& item, const AttributeTypes& types) {
    if (item.kind != Kind::at_least && item.kind != Kind::at_most) return false;
    const bool is_for_a_page = item.value.find('!') != std::string::npos;
    const AttributeType* type = types.find(item.attribute);
    if (!type) return types.empty() && is_for_a_page;
    return is_listed(rule_of(*type)) && (type->ordering.empty() || is_for_a_page);
}

std::optional<AttributeMatching> matching_of(std::string_view attribute,
                                             const AttributeTypes& types) {
    if (types.empty()) return AttributeMatching{.listed = true};
    const AttributeType* type = types.find(attribute);
    if (!type) return std::nullopt;
    const MatchingRule rule = rule_of(*type);
    return AttributeMatching{rule, !type->ordering.empty(), !type->substrings.empty(),
                             is_listed(rule)};
}

class SearchedEntry : public MatchedEntry {
public:
    SearchedEntry(const EntryData& entry, const AttributeTypes& types)
        : entry_(entry), types_(types), naming_(naming_part(entry.name)) {}

    void append_values(std::string_view attribute,
                       std::vector<std::string_view>& values) const override {
        for (const Attribute& held : entry_.attributes)
            if (types_.same(held.name, attribute))
                values.insert(values.end(), held.values.begin(), held.values.end());
    }
    void append_listed_values(std::string_view attribute,
                              std::vector<std::string_view>& values) const override {
        if (types_.same(naming_.attribute, attribute))
            values.push_back(naming_.value);
        else
            append_values(attribute, values);
    }
    void append_attributes(std::vector<std::string_view>& names) const override {
        for (const Attribute& held : entry_.attributes) names.push_back(held.name);
    }
    void append_name_values(std::string_view attribute,
                            std::vector<std::string_view>& values) const override {
        if (types_.same(naming_.attribute, attribute)) values.push_back(naming_.value);
    }
    void append_name_attributes(std::vector<std::string_view>& names) const override {
        names.push_back(naming_.attribute);
    }

private:
    const EntryData& entry_;
    const AttributeTypes& types_;
    NamingPart naming_;
};

}  // namespace

SearchCondition::SearchCondition(const Filter& filter, const AttributeTypes& types)
    : types_(types),
      split_(split(filter, [&](const Filter& item) { return is_answered_here(item, types); })) {
    if (!split_.kept) return;
    matcher_.emplace_back(*split_.kept, [&types](std::string_view attribute) {
        return matching_of(attribute, types);
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
