#pragma once

// What a directory asks of passwords and of those who log in with them.

#include <chrono>

#include "suite/directory/entries/entry_data.h"

namespace orvo::directory {

// The rules of a "pwdPolicy" entry (draft-behera-ldap-password-policy, 5.2), under the names of its
// attributes without "pwd". Without an entry, or where it lacks an attribute, nothing is asked.
//
// Not among them, and ignored in an entry: pwdMaxIdle and pwdMinDelay, for which every login would
// have to be written down, and modules that judge quality.
struct PasswordRules {
    using Seconds = std::chrono::seconds;

    // Wrong passwords lock the account. They are counted all the same where that is false.
    bool lockout = false;
    int max_failure = 0;               // how many; 0: no number of them
    int max_recorded_failure = 0;      // how many are remembered; at least max_failure
    Seconds failure_count_interval{};  // how long one counts; 0: until a right password
    Seconds lockout_duration{};        // 0: until somebody unlocks it

    Seconds max_age{};           // of a password; 0: any
    Seconds expire_warning{};    // how long before a password expires its user is told
    int grace_auth_n_limit = 0;  // logins that an expired password is good for
    Seconds grace_expiry{};      // how long after it has expired; 0: any time

    bool must_change = false;  // a password that an administrator has set, at the next login
    bool allow_user_change = true;
    bool safe_modify = false;  // only who tells the former password may set a new one
    Seconds min_age{};         // of a password that its user changes
    int in_history = 0;        // how many former passwords cannot be used again
    int check_quality = 0;  // 0: lengths are not looked at; 2: nor is anything that is a hash taken
    int min_length = 0;     // in bytes
    int max_length = 0;     // in bytes; 0: any

    static PasswordRules from(const EntryData& policy);
    bool operator==(const PasswordRules&) const = default;
};

}  // namespace orvo::directory
