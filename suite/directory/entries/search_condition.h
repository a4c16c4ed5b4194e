#pragma once

// What a search asks of entries: the part that the server answers, and the part that it does not.
//
// ">=" and "<=" on text are decided here by the order of lists (listing_order.h), which is no
// server's, where the attribute has no ordering rule (in which case a server lets nothing match),
// and where the value has a "!", as it has in every search for the next page.

#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/filters/filter_match.h"
#include "suite/directory/filters/filter_split.h"
#include "suite/directory/names/listing_order.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory {

// The part of a filter that goes by the order of lists, kept back from the rest.
SplitFilter split_by_order(const Filter& filter, const AttributeTypes& types);

// What the schema says of the values of an attribute, for a FilterMatcher.
enum class Bounds { of_rules, of_lists };  // what ">=" and "<=" on text go by
std::optional<AttributeMatching> matching_of(std::string_view attribute,
                                             const AttributeTypes& types, Bounds bounds);

// Used by one thread.
class SearchCondition {
public:
    // `types` must live as long.
    SearchCondition(const Filter& filter, const AttributeTypes& types);

    // The filter for the server.
    const Filter& sent() const { return split_.sent; }
    // What is_true_of looks at.
    const std::vector<std::string>& attributes() const { return split_.attributes; }

    // Of entries that the server returned. An attribute that names its entry counts, in the order
    // of lists, with the value in the name alone: each entry has one place in a list.
    bool is_true_of(const EntryData& entry) const;
    // Whether it may be true of an entry with this name; quick.
    bool may_be_true_of(std::string_view name);

private:
    struct Bound {
        std::string attribute;
        ListingBound bound;
        std::string naming_attribute = {};  // the one asked about last, and what came of it
        bool is_of_names = false;
    };

    const AttributeTypes& types_;
    SplitFilter split_;
    std::vector<FilterMatcher> matcher_;  // one, or none where the server answers everything
    std::vector<Bound> bounds_;           // all have to be reached
};

}  // namespace orvo::directory
