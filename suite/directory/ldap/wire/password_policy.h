#pragma once

// The controls in which a server tells what its password policy says of an account.

#include <optional>
#include <span>
#include <string_view>

#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/policy/password_check.h"

namespace orvo::directory::ldap {

// The value of the policy control (draft-behera-ldap-password-policy, 6.2), which is BER; nothing
// where it cannot be read.
std::optional<PasswordPolicy> try_decode_policy(std::string_view value);

// What the controls of an answer say: the policy control's value, or, of the older control for a
// password that is to be changed, that it is expired. Nothing in it where they say nothing.
PasswordPolicy policy_in(std::span<const Control> controls);

}  // namespace orvo::directory::ldap
