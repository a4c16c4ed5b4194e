#pragma once

// Whether a new password may be set, and what a directory remembers of it. Pure functions, as those
// of account_state.h.

#include <string_view>
#include <vector>

#include "platform/values/secret.h"
#include "suite/directory/policy/account_state.h"

namespace orvo::directory {

// Who sets it: the user, somebody else who may write it, or an administrator, to whom no rule
// applies. (That is whoever manages the whole directory, not a user who administers a shop.)
enum class ChangedBy { user, other, administrator };

// What was told of the password that is to be changed.
enum class FormerPassword { not_told, right, wrong };

struct PasswordChange {
    ChangedBy by;
    FormerPassword former;
    const Secret& password;
    std::string_view stored;  // the value kept now; empty: none
};

// Why a password is not set; code 0: it may be.
struct ChangeRefusal {
    int code = 0;
    std::string_view message = {};
    PasswordPolicy policy = {};
};

// Takes the time of as many hashes as the rules keep in the history: never call it inside a lock.
// What it has looked at (rules, state, stored value) is to be the same still when the password is
// written.
ChangeRefusal refusal_of_change(const PasswordRules& rules, const AccountState& state,
                                const PasswordChange& change, Moment now);

// What is written together with a new password. `stored`: the value that it replaces, which the
// history keeps ("<time>#<syntax>#<size>#<value>"); empty: none.
std::vector<Replacement> changes_with_password(const PasswordRules& rules,
                                               const AccountState& state, ChangedBy by,
                                               std::string_view stored, Moment now);

}  // namespace orvo::directory
