#pragma once

// Evaluates a filter against entries as a server does (RFC 4511, 4.5.1.7).

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/filters/filter.h"
#include "suite/directory/filters/matching_rule.h"

namespace orvo::directory {

// An entry matches where its filter is true. What cannot be told is neither true nor false, and its
// negation is not true either.
enum class Truth { no, yes, undefined };

// What a schema says of the values of an attribute.
struct AttributeMatching {
    MatchingRule rule = MatchingRule::case_ignore;
    bool ordered = true;     // ">=" and "<=" are possible, as far as the rule has an order
    bool substrings = true;  // and pieces of values, as far as the rule is one for text
    bool listed = false;     // ">=" and "<=" go by the order of lists (listing_order.h) instead
    bool equality = true;    // "=" and "~=" are possible
};

// The lookup of an attribute by its description as the filter spells it; nothing for one that the
// directory does not know, of which every item is undefined. An attribute that the directory knows
// and an entry lacks makes an item false.
using MatchingLookup = std::function<std::optional<AttributeMatching>(std::string_view)>;

// What a matcher asks of an entry. Which descriptions mean the same attribute, and which are parts
// of it (options, subtypes), is the entry's to know; names come as the filter spells them. What is
// appended stays valid until the entry changes.
class MatchedEntry {
public:
    virtual ~MatchedEntry() = default;
    virtual void append_values(std::string_view attribute,
                               std::vector<std::string_view>& values) const = 0;
    // The values that place the entry in a list by this attribute, for the order of lists.
    virtual void append_listed_values(std::string_view attribute,
                                      std::vector<std::string_view>& values) const {
        append_values(attribute, values);
    }
    // The names of all its attributes, for items that have a rule and no attribute.
    virtual void append_attributes(std::vector<std::string_view>& names) const = 0;
    // The values of the attribute in the entry's own distinguished name and in those above it, and
    // the names of all attributes there, for items with ":dn".
    virtual void append_name_values(std::string_view attribute,
                                    std::vector<std::string_view>& values) const = 0;
    virtual void append_name_attributes(std::vector<std::string_view>& names) const = 0;
};

// A filter made ready for many entries: its values are turned into keys once. Immutable; keeps
// nothing of the filter, and a copy of the lookup. Any thread may use it, as far as the lookup
// allows.
class FilterMatcher {
public:
    FilterMatcher(const Filter& filter, const MatchingLookup& lookup);
    ~FilterMatcher();
    FilterMatcher(FilterMatcher&&) noexcept;
    FilterMatcher& operator=(FilterMatcher&&) noexcept;

    // "~=" is answered as "=". A stored value that its rule cannot read matches nothing.
    Truth evaluate(const MatchedEntry& entry) const;
    bool matches(const MatchedEntry& entry) const { return evaluate(entry) == Truth::yes; }

private:
    struct Node;
    std::vector<Node> root_;  // one
    MatchingLookup lookup_;
};

}  // namespace orvo::directory
