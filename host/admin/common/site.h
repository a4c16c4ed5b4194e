#pragma once

// The site that a command works on, through the component's classes, so that it is the same for
// every directory. For sources that use the component's client; those that include the house's own
// values (platform/values) cannot include this one, as the two have names in common.

#include <orvo/membership.h>

#include <filesystem>
#include <string>

namespace orvo::admin {

// Bound objects work with the site's service account (MemScriptUser). One site for each thread: the
// component keeps the settings that a thread loads first. All raise orvo::Error.
class Site {
public:
    // `given`: the settings that --site names; empty: the system's. Raises std::runtime_error where
    // they are not there or name no service account.
    explicit Site(const std::filesystem::path& given);

    const std::filesystem::path& file() const { return file_; }
    const ServerInfo& info() const { return info_; }
    const std::string& service() const { return service_; }
    const std::string& service_code() const { return service_code_; }

    Members members() const;
    Profiles profiles() const;
    // Raise std::runtime_error where there is none of that name, or a user's profile or account is
    // not there, without which nobody can be bound.
    User user(const std::string& name) const;
    orvo::Profile profile(const std::string& name) const;

    // A user's entry alone, also of one whose profile is not there. Raises as user().
    LdapAccess user_attributes(const std::string& name) const;

    // The entry of a user or profile of this common name, escaped.
    std::string user_entry(const std::string& name) const;
    std::string profile_entry(const std::string& name) const;

private:
    std::filesystem::path file_;
    ServerInfo info_;
    std::string service_, service_code_;
};

}  // namespace orvo::admin
