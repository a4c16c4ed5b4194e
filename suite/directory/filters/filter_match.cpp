#include "suite/directory/filters/filter_match.h"

#include <algorithm>

#include "suite/directory/names/listing_order.h"

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

// Whether a rule named by a filter can be used on values of the attribute.
bool is_for(MatchingRule rule, const AttributeMatching& attribute) {
    return rule == attribute.rule || (is_text(rule) && is_text(attribute.rule));
}

Truth negated(Truth truth) {
    if (truth == Truth::undefined) return truth;
    return truth == Truth::yes ? Truth::no : Truth::yes;
}

}  // namespace

struct FilterMatcher::Node {
    Node(const Filter& filter, const MatchingLookup& lookup);
    Truth evaluate(const MatchedEntry& entry, const MatchingLookup& lookup) const;

private:
    void prepare_item(const Filter& filter, const MatchingLookup& lookup);
    void prepare_extensible(const Filter& filter, const MatchingLookup& lookup);
    void set_key(std::string_view value);

    Truth evaluate_parts(const MatchedEntry& entry, const MatchingLookup& lookup) const;
    bool matches_any(const std::vector<std::string_view>& values) const;
    bool matches_some_attribute(const MatchedEntry& entry, const MatchingLookup& lookup) const;
    bool matches(std::string_view value) const;

    Kind kind_;
    bool undefined_ = false;  // for every entry
    bool of_name_ = false;
    std::optional<ListingBound> listing_bound_;  // for the order of lists
    MatchingRule rule_ = MatchingRule::case_ignore;
    std::string attribute_;
    std::string key_;
    std::vector<std::string> pieces_;
    std::vector<Node> parts_;
};

FilterMatcher::Node::Node(const Filter& filter, const MatchingLookup& lookup)
    : kind_(filter.kind), of_name_(filter.of_name), attribute_(filter.attribute) {
    for (const Filter& part : filter.parts) parts_.emplace_back(part, lookup);
    if (kind_ == Kind::extensible)
        prepare_extensible(filter, lookup);
    else if (kind_ > Kind::negation)
        prepare_item(filter, lookup);
}

void FilterMatcher::Node::prepare_item(const Filter& filter, const MatchingLookup& lookup) {
    const std::optional<AttributeMatching> matching = lookup(attribute_);
    const bool ordering = kind_ == Kind::at_least || kind_ == Kind::at_most;
    if (matching && matching->listed && ordering) {
        listing_bound_.emplace(filter.value);
        return;
    }
    undefined_ = !matching || (ordering && !(matching->ordered && has_order(matching->rule))) ||
                 ((kind_ == Kind::equality || kind_ == Kind::similar) && !matching->equality) ||
                 (kind_ == Kind::substrings && !(matching->substrings && is_text(matching->rule)));
    if (undefined_ || kind_ == Kind::presence) return;
    rule_ = matching->rule;
    if (kind_ != Kind::substrings) return set_key(filter.value);
    std::optional<std::vector<std::string>> keys = piece_keys(rule_, filter.pieces);
    undefined_ = !keys;
    if (keys) pieces_ = std::move(*keys);
}

void FilterMatcher::Node::prepare_extensible(const Filter& filter, const MatchingLookup& lookup) {
    std::optional<MatchingRule> rule;
    if (!filter.rule.empty()) {
        rule = try_matching_rule(filter.rule);
        undefined_ = !rule;
    }
    if (!undefined_ && !attribute_.empty()) {
        const std::optional<AttributeMatching> matching = lookup(attribute_);
        undefined_ = !matching || (rule && !is_for(*rule, *matching));
        if (matching && !rule) rule = matching->rule;
    }
    if (undefined_) return;
    rule_ = *rule;
    set_key(filter.value);
}

void FilterMatcher::Node::set_key(std::string_view value) {
    std::optional<std::string> key = matching_key(rule_, value);
    undefined_ = !key;
    if (key) key_ = std::move(*key);
}

Truth FilterMatcher::Node::evaluate(const MatchedEntry& entry, const MatchingLookup& lookup) const {
    if (kind_ == Kind::negation) return negated(parts_.front().evaluate(entry, lookup));
    if (kind_ < Kind::negation) return evaluate_parts(entry, lookup);
    if (undefined_) return Truth::undefined;
    if (attribute_.empty()) return matches_some_attribute(entry, lookup) ? Truth::yes : Truth::no;
    std::vector<std::string_view> values;
    if (listing_bound_)
        entry.append_listed_values(attribute_, values);
    else
        entry.append_values(attribute_, values);
    if (of_name_) entry.append_name_values(attribute_, values);
    return matches_any(values) ? Truth::yes : Truth::no;
}

Truth FilterMatcher::Node::evaluate_parts(const MatchedEntry& entry,
                                          const MatchingLookup& lookup) const {
    const Truth decisive = kind_ == Kind::all_of ? Truth::no : Truth::yes;
    Truth result = negated(decisive);
    for (const Node& part : parts_) {
        const Truth truth = part.evaluate(entry, lookup);
        if (truth == decisive) return decisive;
        if (truth == Truth::undefined) result = Truth::undefined;
    }
    return result;
}

bool FilterMatcher::Node::matches_any(const std::vector<std::string_view>& values) const {
    return std::any_of(values.begin(), values.end(),
                       [this](std::string_view value) { return matches(value); });
}

bool FilterMatcher::Node::matches_some_attribute(const MatchedEntry& entry,
                                                 const MatchingLookup& lookup) const {
    const auto is_asked_for = [&](std::string_view name) {
        const std::optional<AttributeMatching> matching = lookup(name);
        return matching && is_for(rule_, *matching);
    };
    std::vector<std::string_view> names;
    std::vector<std::string_view> values;
    entry.append_attributes(names);
    for (std::string_view name : names)
        if (is_asked_for(name)) entry.append_values(name, values);
    names.clear();
    if (of_name_) entry.append_name_attributes(names);
    for (std::string_view name : names)
        if (is_asked_for(name)) entry.append_name_values(name, values);
    return matches_any(values);
}

bool FilterMatcher::Node::matches(std::string_view value) const {
    if (kind_ == Kind::presence) return true;
    if (listing_bound_) {
        const std::string key = listing_key(value);
        return kind_ == Kind::at_least ? listing_bound_->is_reached_by(key)
                                       : listing_bound_->covers(key);
    }
    const std::optional<std::string> key = matching_key(rule_, value);
    if (!key) return false;
    switch (kind_) {
        case Kind::substrings:
            return has_pieces(*key, pieces_);
        case Kind::at_least:
            return *key >= key_;
        case Kind::at_most:
            return *key <= key_;
        default:
            return *key == key_;
    }
}

FilterMatcher::FilterMatcher(const Filter& filter, const MatchingLookup& lookup) : lookup_(lookup) {
    root_.emplace_back(filter, lookup);
}

FilterMatcher::~FilterMatcher() = default;
FilterMatcher::FilterMatcher(FilterMatcher&&) noexcept = default;
FilterMatcher& FilterMatcher::operator=(FilterMatcher&&) noexcept = default;

Truth FilterMatcher::evaluate(const MatchedEntry& entry) const {
    return root_.front().evaluate(entry, lookup_);
}

}  // namespace orvo::directory
