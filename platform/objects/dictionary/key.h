#pragma once

// Keys of dictionaries. On the thread of the dictionary; texts are looked at where they stand.

#include "platform/values/variant.h"

namespace orvo::dictionary {

// How texts are told apart.
enum class Texts : unsigned char { exactly, ignoring_case };

// Equal keys have equal hashes. Raises 5 for a value that cannot be a key.
std::size_t hash_of(const Variant& key, Texts texts);
bool are_equal(const Variant& a, const Variant& b, Texts texts);

}  // namespace orvo::dictionary
