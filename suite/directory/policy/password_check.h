#pragma once

// What a server's answer to a password check says of the account, as the provider's number.

#include <optional>
#include <string_view>

namespace orvo::directory {

// The numbers that a password check gives.
namespace password_check {
inline constexpr int right = 0;
inline constexpr int wrong = -1;  // the user or the password, which are not told apart
inline constexpr int locked = -2;
inline constexpr int disabled = -3;
inline constexpr int expired = -4;  // right, but expired or to be changed
inline constexpr int too_many_failures = -5;
}  // namespace password_check

// What a server's password policy says of an account (draft-behera-ldap-password-policy, 6.2).
struct PasswordPolicy {
    std::optional<int> seconds_before_expiry;
    std::optional<int> logins_left;  // that an expired password is still good for
    std::optional<int> error;        // 0 expired, 1 locked, 2 to be changed, 3 to 8 others
    bool operator==(const PasswordPolicy&) const = default;
};

// The number for an answer: its result code, its message and what the policy says, which may be
// nothing. Nothing for an answer that does not judge the account (the server is busy or
// unavailable, asks for encryption, is unwilling without saying why, …); that is a failure.
std::optional<int> judged(int code, std::string_view message, const PasswordPolicy& policy);

}  // namespace orvo::directory
