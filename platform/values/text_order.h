#pragma once

// The order of texts in lists, for people to look things up and to go on with a list where they
// left it: "Emil", "emil", "Emil!", "Émil", "Emile". Between x and x + "!" stand at most other
// spellings of x, so what follows x and what follows x + "!" in a list are the same names. The
// order is the same in every locale and on every system; Latin, Greek and Cyrillic letters are
// known. Any thread.

#include "platform/values/text.h"

namespace orvo {

enum class OrderLevel : unsigned char {
    // Letters without case and accents, and all other characters by their numbers. Ligatures are
    // two letters, "ß" is "ss". Blanks in front do not count, runs of blanks count as one, and "!"
    // at the end do not count.
    letters,
    accents,
    // How many "!" stand at the end.
    ending,
    // Capitals before small letters.
    spelling,
};
inline constexpr OrderLevel order_levels[] = {OrderLevel::letters, OrderLevel::accents,
                                              OrderLevel::ending, OrderLevel::spelling};

// Negative, 0 or positive, as one level alone sees it. A level is to be asked only where the levels
// before it see no difference; what has several texts asks them all for one level, then for the
// next.
int compare_at(OrderLevel level, TextView a, TextView b);

// The same for one text: what the first level that sees a difference says, up to `last`.
int compare_up_to(OrderLevel last, TextView a, TextView b);

// What the levels before the spelling compare, for keys that are kept. `accents_of` has one unit
// for each letter, U+0001 for one without an accent, and no such units at its end.
Text letters_of(TextView text);
Text accents_of(TextView text);
std::size_t ending_of(TextView text);

}  // namespace orvo
