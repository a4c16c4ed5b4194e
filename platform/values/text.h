#pragma once

// Text of the house: UTF-16 with a length, as an Automation string is. It may hold NULs.
// UTF-8 is used only at the edges (directory wire, files, terminal, HTTP) and converted there.
//
// Any thread. Nothing fails but for want of memory.

#include <string>
#include <string_view>
#include <vector>

namespace orvo {

using Text = std::u16string;
using TextView = std::u16string_view;

// Conversions at the edges. Malformed input never fails: an ill-formed sequence becomes U+FFFD
// (as the Unicode standard recommends), so nothing is lost silently and nothing throws.
Text from_utf8(std::string_view bytes);
std::string to_utf8(TextView text);

// Whether every half of a surrogate pair has its other one. Of other texts to_utf8 gives what may
// be another text's, too: names and passwords are to be looked at before.
bool is_well_formed(TextView text);

// As to_utf8 and from_utf8, but for halves of surrogate pairs: each is three bytes, which no other
// program takes for UTF-8, so that every text comes back unit by unit.
std::string to_utf8_with_halves(TextView text);
Text from_utf8_with_halves(std::string_view bytes);

// Equality and order without regard to case, by simple case folding of Latin, Greek and Cyrillic
// letters; the same in every locale. `lower` gives the folded text: two texts are equal without
// regard to case exactly when their lower forms are equal.
bool equal_ignoring_case(TextView a, TextView b);
int compare_ignoring_case(TextView a, TextView b);
Text lower(TextView text);

// Whether `text` holds `part`, without regard to case.
bool contains_ignoring_case(TextView text, TextView part);

// Cuts leading and trailing blanks (U+0020 only).
Text trimmed(TextView text);

// Splits at every `separator`; the empty text gives no pieces at all, "a," gives "a" and "". An
// empty separator is found nowhere.
std::vector<Text> split(TextView text, TextView separator);

// Replaces every occurrence of `from`, left to right.
Text replaced(TextView text, TextView from, TextView to);

// Decimal digits of a number, with "-" in front where needed.
Text decimal(long long number);

// Upper-case hexadecimal without leading zeros; a negative number shows its 32-bit two's
// complement.
Text hexadecimal(int number);

}  // namespace orvo
