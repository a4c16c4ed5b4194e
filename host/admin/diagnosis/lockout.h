#pragma once

// Apart from the other headers here, for sources that use the component's client.

#include <filesystem>
#include <string>

namespace orvo::admin {

enum class Lockout { in_force, none, not_known };

// Whether the password policy that a user of OpenLDAP or the embedded directory is under refuses
// accounts that are marked as locked or disabled (pwdLockout). Not known where the service account
// cannot see the policy, or the directory is of another provider. `site`: the
// settings. What goes wrong is raised as a Failure or std::exception.
Lockout lockout_of(const std::filesystem::path& site, const std::string& user);

}  // namespace orvo::admin
