#pragma once

#include <string>

#include "platform/values/secret.h"

namespace orvo::directory {

// What a hash costs whoever computes it, once for each guess: each step up is about twice the time
// and memory of the one before.
struct HashCost {
    static constexpr int lowest = 1;
    static constexpr int usual = 5;  // some 10 ms and 4 MB
    static constexpr int highest = 11;
};

// A password as a store may keep it where it does not hash by itself: "{CRYPT}" and a yescrypt hash
// with a salt of its own; two hashes of one password differ. Takes as much processor time as the
// cost says, so never call it inside a lock. Raises result code 19 for a password of more than 511
// bytes, which cannot be hashed, 80 when the system cannot make salts, 89 for a cost that is none,
// and 5 for a password that holds a NUL, which the hash would cut off there.
std::string hashed_password(const Secret& password, int cost = HashCost::usual);

}  // namespace orvo::directory
