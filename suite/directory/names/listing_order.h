#pragma once

// The order in which entries are listed, page after page.
//
// A caller that has seen the entry named x goes on with those from x + "!" on. So there must be
// nothing between x and x + "!": "!" is the lowest of all characters here, lower than the blank,
// and "Smith John" comes after "Smith!". Letters count without regard to case (as text.h's `lower`
// folds them), otherwise characters come in the order of their numbers; blanks in front do not
// count, runs of blanks count as one.

#include <string>
#include <string_view>

namespace orvo::directory {

// A text whose octets are in the order of the values that keys are made of. Values that differ, if
// only in case, have different keys, so that the order is the same every time.
std::string listing_key(std::string_view value);

// The value of a ">=" or "<=" in this order.
class ListingBound {
public:
    explicit ListingBound(std::string_view value);

    // Whether the value with this key is at or beyond the bound, without regard to case. From x +
    // "!" on are those after x, also where they differ from it in case alone.
    bool is_reached_by(std::string_view key) const { return is_after_ ? key > key_ : key >= key_; }

    // Whether the value with this key is at or before the bound, without regard to case.
    bool covers(std::string_view key) const;

private:
    bool is_after_;      // beyond key_, not at it
    std::string key_;    // where the values at or beyond the bound begin
    std::string whole_;  // the bound itself, without regard to case
};

}  // namespace orvo::directory
