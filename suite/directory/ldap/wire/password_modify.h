#pragma once

#include <string_view>

#include "platform/values/secret.h"

namespace orvo::directory::ldap {

// The Password Modify operation of RFC 3062.
inline constexpr std::string_view password_modify_oid = "1.3.6.1.4.1.4203.1.11.1";

// The operation's request value in BER: the new password of the user with this distinguished name,
// and the former one unless it is empty.
Secret password_modify_request(std::string_view name, const Secret& new_password,
                               const Secret& former_password = {});

}  // namespace orvo::directory::ldap
