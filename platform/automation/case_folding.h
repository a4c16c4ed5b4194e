#pragma once

namespace orvo::detail {

// Unicode's simple case folding of one UTF-16 unit, for the letters of the Latin (up to Extended-B,
// and Extended Additional), Greek and Cyrillic blocks. Everything else, surrogates too, is its own
// folding: "ß" has no simple one, and "İ" none that holds in every language.
char16_t folded(char16_t unit);

}  // namespace orvo::detail
