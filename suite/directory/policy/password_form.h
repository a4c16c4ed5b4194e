#pragma once

// What a password may look like, whatever the server.

#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/values/secret.h"

namespace orvo::directory {

inline constexpr std::size_t longest_password = 64 * 1024;  // bytes

struct UnusablePassword {
    int code;  // for a refusal to set it
    std::string_view sentence;
};

// Why a password is nobody's and no server is asked about it: it holds a NUL, behind which some
// servers and client libraries read no further, or is longer than any. Nothing for all others, the
// empty one among them.
std::optional<UnusablePassword> unusable(const Secret& password);

}  // namespace orvo::directory
