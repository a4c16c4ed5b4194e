#pragma once

// Values of the directory as the texts that it keeps. For sources that use the component's client.

#include <orvo/membership.h>

#include <string>
#include <vector>

namespace orvo::admin {

// Of an attribute or a field: dates as generalized times ("20281231235959Z"), TRUE and FALSE, bytes
// as octets, anything else as its text. None for nothing.
std::vector<std::string> texts_of(const Value& value);

}  // namespace orvo::admin
