#pragma once

#include "platform/values/secret.h"

namespace orvo::directory::ldap {

// The attribute that takes passwords in an Active Directory, over an encrypted connection only. It
// is never read.
inline constexpr const char* unicode_password_attribute = "unicodePwd";

// A password as its value: UTF-16 with the low byte first, between quotes. One that is no UTF-8 is
// written with U+FFFD where it is not.
Secret unicode_password(const Secret& password);

}  // namespace orvo::directory::ldap
