#pragma once

#include <string>

#include "platform/values/text.h"

namespace orvo::directory {

// The full name of an entry that a caller names by a relative name, "," and the container, put
// together without escaping (name_below). UTF-8, as is the container. Raises result code 34 for a
// name that is not below it.
std::string child_name(TextView written, const std::string& container);

}  // namespace orvo::directory
