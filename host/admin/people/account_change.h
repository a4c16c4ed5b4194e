#pragma once

// Accounts that are locked, disabled, or have to get another password, as the site's directory
// keeps them. For sources that use the component's client.

#include <string>

#include "host/admin/common/site.h"
#include "host/admin/people/user_admin.h"

namespace orvo::admin {

// What was done, for a sentence: "unlocked", "not locked". Raises std::runtime_error where the user
// is not there, the account is in another state than the one that is to be changed, or the
// directory keeps no such thing.
std::string change_account(const Site& site, const std::string& name, AccountChange change);

// Raises std::runtime_error for a disabled account in a directory where a new password would enable
// it.
void require_enabled(const Site& site, const std::string& name);

}  // namespace orvo::admin
