#pragma once

// Search filters, read once and meant the same by every provider: a server gets the strict text, a
// provider with entries of its own evaluates the tree (filter_match.h).

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "platform/values/text.h"

namespace orvo::directory {

// A filter as a tree (RFC 4511, 4.5.1.7). A regular value; equal trees mean the same, written the
// same way. Attribute descriptions and rules are kept as they were spelled, values as the octets
// that they stand for, text in UTF-8.
//
// Trees made by hand keep to what reading gives: names that are attribute descriptions or numbers
// (RFC 4512), not more than `deepest` levels, for evaluating and writing descend into them.
struct Filter {
    enum class Kind {
        all_of,      // parts; none at all is true of every entry (RFC 4526)
        any_of,      // parts; none at all is true of no entry
        negation,    // parts: one
        equality,    // attribute, value
        presence,    // attribute
        substrings,  // attribute, pieces
        at_least,    // attribute, value
        at_most,     // attribute, value
        similar,     // attribute, value
        extensible,  // attribute or rule or both, value, of_name
    };

    Kind kind = Kind::all_of;
    std::vector<Filter> parts = {};
    std::string attribute = {};
    std::string value = {};
    // The value cut at its wildcards, so two at least: the first is what it begins with, the last
    // what it ends with, either may be empty, those between may not.
    std::vector<std::string> pieces = {};
    std::string rule = {};  // the matching rule's name or number; empty: the attribute's own
    bool of_name = false;  // the attributes in the entry's distinguished name count as well (":dn")

    bool operator==(const Filter&) const = default;

    // The limits of a text that is read. The longest filter that the component makes, one item for
    // each of 1000 profiles, stays far below.
    static constexpr std::size_t deepest = 100;
    static constexpr std::size_t longest = 1'000'000;

    // Reads a filter: any that RFC 4515 allows, and of others those that can be meant in one way
    // only.
    // - Blanks (also tabs and line ends) may stand around every part, after "&", "|" and "!", and
    //   around operators. A value's own blanks at its ends are not part of it unless written \20.
    // - The filter after "!" needs no parentheses, "(!a = b)"; nor does the outermost one, "a=b".
    //   A filter may have parentheses too many, "((a=b))". Filters side by side need "&" or "|".
    // - Parentheses in a value are part of it where they are balanced, "(cn=Shop (London))", unless
    //   what they enclose begins like a filter, "(cn=a (sn=b))": there one is rather missing.
    // - A backslash with two hexadecimal digits is that octet, as strictly; any other stands for
    //   itself. An asterisk is a wildcard, also where it comes from a name; only after ">=" and
    //   "<=", which have none, it stands for itself. Wildcards side by side are one.
    // - Apostrophes, quotes and whatever else have no meaning: they stay as they are.
    // Anything else raises 0x8007203E (result code 87), its description with the reason, the place
    // (the count of UTF-16 units from 1, as scripts count characters) and the whole text; of a text
    // that is too long, with its beginning.
    static Filter parse(TextView text);

    // The strict text (RFC 4515), in UTF-8; reading it gives an equal tree. Octets that would mean
    // something else, control characters, what is not UTF-8, and a blank at either end of a value
    // are written as \xx.
    std::string text() const;
};

}  // namespace orvo::directory
