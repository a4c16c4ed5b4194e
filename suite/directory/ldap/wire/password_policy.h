#pragma once

// What a server says of an account when its password is checked, as the provider's number.

#include <optional>
#include <string_view>

#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap {

// The numbers that a password check gives.
namespace password_check {
inline constexpr int right = 0;
inline constexpr int wrong = -1;  // the user or the password, which are not told apart
inline constexpr int locked = -2;
inline constexpr int disabled = -3;
inline constexpr int expired = -4;  // right, but expired or to be changed
inline constexpr int too_many_failures = -5;
}  // namespace password_check

// The answer of the password policy control (draft-behera-ldap-password-policy, 6.2).
struct PasswordPolicy {
    std::optional<int> seconds_before_expiry;
    std::optional<int> logins_left;  // that an expired password is still good for
    std::optional<int> error;        // 0 expired, 1 locked, 2 to be changed, 3 to 8 others
    bool operator==(const PasswordPolicy&) const = default;

    // From the control's value; nothing where it cannot be read.
    static std::optional<PasswordPolicy> try_decode(std::string_view ber);
};

// The number for the result of a bind; nothing for a result that says nothing about the account
// (the server is unavailable, asks for encryption, …), which is a failure.
std::optional<int> judged(const BindResult& bind);

}  // namespace orvo::directory::ldap
