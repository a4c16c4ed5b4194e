#pragma once

// What the indexes of a store's file hold of an entry.

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/embedded/store/attribute_names.h"
#include "suite/directory/entries/entry_data.h"

namespace orvo::directory::embedded {

// A row of the table `value`, but for the entry.
struct IndexedValue {
    AttributeNumber attribute;  // without options
    std::string key;

    auto operator<=>(const IndexedValue&) const = default;
};

// Longer keys are cut, so that a long text costs no more than a short one. Who looks for a key cuts
// it as well, and finds too many entries, none too few.
inline constexpr std::size_t longest_index_key = 200;

// The key of a value, or of the beginning of one; it is in the order of its rule. Empty for a value
// that the rule cannot read: it counts for presence alone.
std::string index_key(MatchingRule rule, std::string_view value);

// Of all attributes that are indexed, in order, each once. Gives new attributes their numbers.
std::vector<IndexedValue> indexed_values(const std::vector<Attribute>& attributes,
                                         AttributeNames& names);

// An entry's rows in the table `below` are alike but for the ancestor and the depth.
struct ListedName {
    AttributeNumber attribute;  // that names the entry
    std::string listing;        // order_key of the name

    bool operator==(const ListedName&) const = default;
};
ListedName listed_name(std::string_view name, AttributeNames& names);

// Entries are listed below each of their ancestors, the children apart from those further down and
// each naming attribute apart from the others: a bound on "cn" says nothing of what "ou" names.
constexpr std::int64_t listing_kind(AttributeNumber attribute, bool is_child) {
    return attribute * 2 + (is_child ? 0 : 1);
}
constexpr AttributeNumber attribute_of_kind(std::int64_t kind) { return kind / 2; }
constexpr bool is_kind_of_children(std::int64_t kind) { return kind % 2 == 0; }

// The key (DistinguishedName::key) of the entry right above; empty where the name has one part.
std::string_view key_above(std::string_view key);

}  // namespace orvo::directory::embedded
