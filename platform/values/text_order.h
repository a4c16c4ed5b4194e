#pragma once

// The order of texts in lists, for people to look things up: letters count first, then accents,
// then the spelling ("Emil", "emil", "Émil", "Emile", "Émile"). It is the same in every locale and
// on every system; Latin, Greek and Cyrillic letters are known. Any thread.

#include "platform/values/text.h"

namespace orvo {

enum class OrderLevel : unsigned char {
    // Letters without case and accents, and all other characters by their numbers, but for "!",
    // which comes before all. Ligatures are two letters, "ß" is "ss".
    letters,
    accents,
    // Capitals before small letters.
    spelling,
};
inline constexpr OrderLevel order_levels[] = {OrderLevel::letters, OrderLevel::accents,
                                              OrderLevel::spelling};

// Negative, 0 or positive, as one level alone sees it. A level is to be asked only where the levels
// before it see no difference; what has several texts asks them all for one level, then for the
// next.
int compare_at(OrderLevel level, TextView a, TextView b);

// What the first two levels compare, for keys that are kept. `accents_of` has one unit for each
// letter, U+0001 for one without an accent, and no such units at its end.
Text letters_of(TextView text);
Text accents_of(TextView text);

}  // namespace orvo
