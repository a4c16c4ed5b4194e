#pragma once

// How values of a directory compare (RFC 4517, 4.2), as keys: octet strings whose equality and
// order are those of the values, fit for an index.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory {

enum class MatchingRule {
    case_ignore,         // text without regard to case; blanks at the ends and in runs fold
    case_exact,          // text with regard to case; blanks fold as well
    telephone,           // text without regard to case, blanks and hyphens
    integer,             // whole numbers of any length
    boolean,             // TRUE and FALSE
    time,                // generalized times, with every digit of a fraction of seconds
    distinguished_name,  // as DistinguishedName compares them; without an order
    octets,              // as they are
};

// The rule for values of a syntax, where a schema says no more.
MatchingRule matching_rule_of(Syntax syntax);
// The rule for an attribute's values: its equality rule where that has a row above, else its
// syntax's.
MatchingRule matching_rule_of(const AttributeType& type);

// A rule by its name or number in a filter, case-insensitively: the equality and ordering rules of
// RFC 4517 that have a row above. Nothing for others.
std::optional<MatchingRule> try_matching_rule(std::string_view name);

bool is_text(MatchingRule rule);    // substrings are defined
bool has_order(MatchingRule rule);  // ">=" and "<=" are defined

// The key of a value; nothing where it is none of the rule's, text that is not UTF-8 included.
// Characters are folded as those of distinguished names are (text_forms.h), but for exact case.
std::optional<std::string> matching_key(MatchingRule rule, std::string_view value);

// The key of a piece of a value, of a text rule: it occurs in the key of every value that the piece
// occurs in. Nothing for pieces that are not UTF-8.
enum class Place { initial, any, final };
std::optional<std::string> piece_key(MatchingRule rule, std::string_view piece, Place place);
// The same for all pieces of a filter's item; an end that is empty stays empty.
std::optional<std::vector<std::string>> piece_keys(MatchingRule rule,
                                                   const std::vector<std::string>& pieces);
// Whether the value with this key has these pieces one after another, the first at its beginning
// and the last at its end.
bool has_pieces(std::string_view key, const std::vector<std::string>& piece_keys);

}  // namespace orvo::directory
