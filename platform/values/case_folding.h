#pragma once

// Which letters are the same without regard to case. Any thread; nothing fails.

namespace orvo::detail {

// Unicode's simple case folding of one UTF-16 unit, for the letters of the Latin (up to Extended-B,
// and Extended Additional), Greek and Cyrillic blocks. Everything else, surrogates too, is its own
// folding: "ß" has no simple one, and "İ" none that holds in every language. `folded_letter` is
// for those beyond ASCII.
char16_t folded_letter(char16_t unit);

inline char16_t folded(char16_t unit) {
    if (unit >= 0x80) return folded_letter(unit);
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

}  // namespace orvo::detail
