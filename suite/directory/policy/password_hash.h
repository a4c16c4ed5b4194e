#pragma once

#include <string>

#include "platform/values/secret.h"

namespace orvo::directory {

// A password as a store may keep it where it does not hash by itself: "{CRYPT}" and a yescrypt hash
// with a salt of its own; two hashes of one password differ. Takes some milliseconds of processor
// time, as it is meant to. Raises a provider failure when the system cannot make salts, and 5 for a
// password that holds a NUL, which the hash would cut off there.
std::string hashed_password(const Secret& password);

}  // namespace orvo::directory
