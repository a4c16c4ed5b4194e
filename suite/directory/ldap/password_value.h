#pragma once

#include <string>

#include "platform/automation/secret.h"
#include "platform/automation/variant.h"

namespace orvo::directory::ldap {

// Whether an attribute is the one that holds passwords, under any of its names.
bool is_password(const std::string& attribute);

// The single value that a password has, as a text, bytes, or an array of one of them; none at all
// is the empty password. Raises 13 for several values, 94 for null.
Secret password_in(const Variant& value);

}  // namespace orvo::directory::ldap
