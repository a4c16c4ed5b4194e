#pragma once

#include <string_view>

#include "platform/automation/secret.h"
#include "platform/automation/variant.h"

namespace orvo::directory::ldap {

// Whether an attribute is the one that holds passwords, under any of its names.
bool is_password(std::string_view attribute);
// Whether its values are kept nowhere once they were read: passwords, also "OrvoNTPassword", that
// of an account of the operating system, which a directory gives out as it is.
bool is_secret(std::string_view attribute);

// The single value that a password has, as a text, bytes, or an array of one of them; none at all
// is the empty password. Raises 13 for several values, 94 for null, result code 21 for a text with
// half of a surrogate pair, with which nobody could log in.
Secret password_in(const Variant& value);

}  // namespace orvo::directory::ldap
