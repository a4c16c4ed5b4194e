#pragma once

// The texts of the language's engine: each UTF-16 unit encoded on its own in one to three bytes, so
// that halves of pairs and NULs are kept.

#include <string>
#include <string_view>

#include "platform/values/text.h"

namespace orvo::script {

std::string to_engine(TextView text);

// A sequence of four bytes becomes a pair; what is malformed becomes U+FFFD.
Text from_engine(std::string_view bytes);

}  // namespace orvo::script
