#pragma once

// Which attributes hold passwords, or say what becomes of them.

#include <span>
#include <string>
#include <string_view>

namespace orvo::directory {

// Whether an attribute is the one that holds passwords, under any of its names.
bool is_password(std::string_view attribute);
// Whether its values are hashes of passwords: those of today, and former ones ("pwdHistory").
bool holds_hashes(std::string_view attribute);
// Whether its values are kept nowhere once they were read: passwords, also "OrvoNTPassword", that
// of an account of the operating system, which a directory gives out as it is.
bool is_secret(std::string_view attribute);

// Whether it is "pwdAccountLockedTime". A server takes its deletion as unlocking, and forgets the
// failures, too; one that is replaced by nothing it does not, so that the next failure locks anew.
bool is_account_lock(std::string_view attribute);

// Whether an account whose attribute has these values lets nobody in: "pwdAccountLockedTime" with
// any, "nsAccountLock" that is true, "userAccountControl" with the flag of a disabled account.
bool disables_account(std::string_view attribute, std::span<const std::string> values);

}  // namespace orvo::directory
