#include "suite/directory/names/listing_order.h"

#include <algorithm>

#include "platform/values/text.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

// What ends the part of a key that does not regard case; lower than all characters.
constexpr char end_of_folded = '\0';
constexpr char lowest = '\1';
constexpr int shift = 2;  // makes room for both; the octets of UTF-8 end at 0xF4

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
    append(key, is_ascii ? ascii::lower(value) : to_utf8(lower(from_utf8(value))));
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
