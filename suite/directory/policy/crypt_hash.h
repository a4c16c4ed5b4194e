#pragma once

// The system's password hashes (libcrypt).

#include <optional>
#include <string>

#include "platform/values/secret.h"

namespace orvo::directory {

// The hash of a password with the method, cost and salt of `setting`, which may be a whole hash.
// Nothing where the system does not know the method, and for passwords that it would not read to
// their end: those that hold a NUL or have more than longest_hashed bytes.
std::optional<std::string> try_crypt(const Secret& password, const std::string& setting);

inline constexpr std::size_t longest_hashed = 511;

}  // namespace orvo::directory
