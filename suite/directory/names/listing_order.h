#pragma once

// The order in which entries are listed, page after page: that of text_order.h, in which record
// sets are sorted, too.
//
// A caller that has seen the entry named x goes on with those from x + "!" on. In this order
// nothing lies between the two but x in other spellings, so that is all that follows x.

#include <string>
#include <string_view>

namespace orvo::directory {

// A text whose octets are in the order of the values that keys are made of. Values that differ, if
// only in their spelling, have different keys, so that the order is the same every time.
std::string listing_key(std::string_view value);

// The value of a ">=" or "<=" in this order. Letters, accents and "!" at the end count, the
// spelling does not: ">= emil" and "<= emil" are both true of "emil" and "Emil", and of no others;
// "Émil" is behind them. But ">=" x + "!" is true of all that is listed behind x, also of x in a
// later spelling.
class ListingBound {
public:
    explicit ListingBound(std::string_view value);

    // The keys for which ">=" is true begin at the first of these, those for which "<=" is true end
    // before the second.
    const std::string& first() const { return first_; }
    const std::string& past() const { return past_; }

    // Whether ">=" is true of the value with this key.
    bool is_reached_by(std::string_view key) const { return key >= first_; }
    // Whether "<=" is true of the value with this key.
    bool covers(std::string_view key) const { return key < past_; }

private:
    std::string first_;
    std::string past_;
};

}  // namespace orvo::directory
