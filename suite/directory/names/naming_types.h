#pragma once

#include <string_view>

namespace orvo::directory {

// The one spelling, in lower case, of an attribute type that entries are commonly named by (RFC
// 4519, RFC 4524, RFC 2798): "sn" of "surname" and of "2.5.4.4". Of others the type itself, which
// is in lower case.
std::string_view naming_type(std::string_view type);

}  // namespace orvo::directory
