#pragma once

#include "platform/values/secret.h"
#include "platform/values/variant.h"

namespace orvo::directory {

// The single value that a password has, as a text, bytes, or an array of one of them; none at all
// is the empty password. Raises 13 for several values, 94 for null, result code 21 for a text with
// half of a surrogate pair, with which nobody could log in, and what `unusable` says of others.
Secret password_in(const Variant& value);

}  // namespace orvo::directory
