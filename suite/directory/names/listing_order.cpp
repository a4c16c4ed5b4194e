#include "suite/directory/names/listing_order.h"

#include <algorithm>

#include "platform/values/text.h"
#include "platform/values/text_order.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

// What ends the part of a key that does not regard case, and in it the letters where there are
// accents; lower than all characters.
constexpr char end_of_folded = '\0';
constexpr char end_of_letters = '\1';
constexpr char lowest = '\2';
constexpr int shift = 3;  // makes room for them; the octets of UTF-8 end at 0xF4

void append(std::string& key, std::string_view folded) {
    bool after_blank = true;
    for (const char c : folded) {
        const bool is_blank = c == ' ';
        if (is_blank && after_blank) continue;
        after_blank = is_blank;
        key += c == '!' ? lowest : static_cast<char>(c + shift);
    }
}

std::string folded_key(std::string_view value) {
    const bool is_ascii = std::all_of(value.begin(), value.end(),
                                      [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    std::string key;
    key.reserve(2 * value.size() + 1);
    if (is_ascii) {
        append(key, ascii::lower(value));
        return key;
    }
    const Text text = from_utf8(value);
    append(key, to_utf8(letters_of(text)));
    const Text accents = accents_of(text);
    if (!accents.empty()) (key += end_of_letters) += to_utf8(accents);
    return key;
}

}  // namespace

std::string listing_key(std::string_view value) {
    std::string key = folded_key(value);
    key += end_of_folded;
    return key += value;
}

ListingBound::ListingBound(std::string_view value)
    : is_after_(value.ends_with('!')), whole_(folded_key(value)) {
    key_ = is_after_ ? listing_key(value.substr(0, value.size() - 1)) : whole_;
}

bool ListingBound::covers(std::string_view key) const {
    return key.substr(0, key.find(end_of_folded)) <= whole_;
}

}  // namespace orvo::directory
