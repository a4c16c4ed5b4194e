#pragma once

// What a directory remembers of an account, and what comes of a login. Pure functions: they know
// neither a store nor a clock. The rules are those of draft-behera-ldap-password-policy; where
// OpenLDAP's policy differs from it, they do as OpenLDAP does.

#include <optional>
#include <string>
#include <vector>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/policy/account_times.h"
#include "suite/directory/policy/password_check.h"
#include "suite/directory/policy/password_rules.h"

namespace orvo::directory {

// The names of the attributes.
namespace account {
inline constexpr const char* changed_time = "pwdChangedTime";
inline constexpr const char* locked_time = "pwdAccountLockedTime";
inline constexpr const char* failure_times = "pwdFailureTime";
inline constexpr const char* grace_times = "pwdGraceUseTime";
inline constexpr const char* reset = "pwdReset";
inline constexpr const char* history = "pwdHistory";
inline constexpr const char* start_time = "pwdStartTime";
inline constexpr const char* end_time = "pwdEndTime";

// pwdAccountLockedTime of an account that is locked until somebody unlocks it, whatever the rules
// say of durations.
inline constexpr const char* locked_for_good = "000001010000Z";
}  // namespace account

// The operational attributes of a user's entry, with their values as they are written there.
struct AccountState {
    std::string changed_time;  // of the password; empty: nobody knows, and it does not expire
    std::string locked_time;   // since when it is locked; empty: it is not
    std::vector<std::string> failure_times;  // wrong passwords since the last right one
    std::vector<std::string> grace_times;    // logins since the password has expired
    std::optional<bool> reset;               // the password is to be changed at the next login
    std::vector<std::string> history;        // former passwords (password_change.h)
    std::string start_time;                  // before and from which it is locked
    std::string end_time;

    static AccountState from(const EntryData& user);

    // While it is locked no password is right, and none needs to be looked at.
    bool is_locked(const PasswordRules& rules, Moment now) const;

    bool operator==(const AccountState&) const = default;
};

// What comes of a login (a bind) of somebody whose entry has a password.
struct BindOutcome {
    int code = 0;           // result code: 0 or 49
    PasswordPolicy policy;  // for `judged`
    // What is to be written, also where the login is refused; mostly nothing for a right password.
    std::vector<Replacement> changes;

    // Whether the login is good for changing the own password, and nothing else.
    bool is_restricted() const { return policy.error == 2; }
};

// `is_right`: the password is the entry's. It does not matter where the account is locked; who
// computes hashes outside of transactions asks first, and again here with what has been written
// meanwhile: every failure counts once, however many come at the same time.
BindOutcome outcome_of_bind(const PasswordRules& rules, const AccountState& state, bool is_right,
                            Moment now);

// What is to be changed beside pwdAccountLockedTime when an administrator removes it.
std::vector<Replacement> changes_with_unlocking(const AccountState& state);

}  // namespace orvo::directory
