#include "suite/directory/names/listing_order.h"

#include <algorithm>

#include "platform/values/text_order.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

// Ends each level of a key, and is lower than all octets of one.
constexpr char end_of_level = '\0';
constexpr char past_end_of_level = '\1';

bool is_ascii(std::string_view value) {
    return std::ranges::all_of(value, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// What letters_of gives, without the detour.
std::string ascii_letters(std::string_view name) {
    std::string letters = ascii::lower(name);
    const auto rest = std::unique(letters.begin(), letters.end(),
                                  [](char a, char b) { return a == ' ' && b == ' '; });
    letters.erase(rest, letters.end());
    if (letters.starts_with(' ')) letters.erase(0, 1);
    return letters;
}

// The levels before the spelling; the end of the last one is missing.
std::string levels_of(std::string_view value) {
    const std::string_view name = value.substr(0, value.find_last_not_of('!') + 1);
    std::string letters;
    std::string accents;
    if (is_ascii(name)) {
        letters = ascii_letters(name);
    } else {
        const Text text = from_utf8(name);
        letters = to_utf8(letters_of(text));
        accents = to_utf8(accents_of(text));
    }
    std::string key;
    key.reserve(2 * value.size() + 3);
    for (const char c : letters) key += static_cast<char>(c + 1);  // above the end of a level
    ((key += end_of_level) += accents) += end_of_level;
    return key.append(value.size() - name.size(), '!');
}

}  // namespace

std::string listing_key(std::string_view value) {
    std::string key = levels_of(value);
    key += end_of_level;
    return key += value;
}

ListingBound::ListingBound(std::string_view value) : first_(levels_of(value)), past_(first_) {
    past_ += past_end_of_level;
    if (!value.ends_with('!')) return;
    first_ = listing_key(value.substr(0, value.size() - 1));
    first_ += '\0';  // the next text after that
}

}  // namespace orvo::directory
