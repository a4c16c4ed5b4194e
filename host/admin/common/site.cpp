#include "host/admin/common/site.h"

#include <cstdlib>
#include <stdexcept>

#include "host/admin/common/component_failure.h"
#include "host/admin/common/names.h"
#include "host/admin/common/site_settings.h"

namespace orvo::admin {

Site::Site(const std::filesystem::path& given) : file_(site_file(given)) {
    // Who looks for the site's own settings, the audit say, finds the same.
    setenv("ORVO_SITE_CONFIG", file_.c_str(), 1);
    Members().setServerInfo(file_.string());
    info_.SetConfiguration(file_.string());
    service_ = info_.GetMemScriptUser().to<std::string>();
    service_code_ = info_.GetMemScriptCode().to<std::string>();
    if (service_.empty())
        throw std::runtime_error(file_.string() + " does not say MemScriptUser in [MEMBERSHIP]");
}

Members Site::members() const {
    Members members;
    members.BindAs(service_, service_code_);
    return members;
}

Profiles Site::profiles() const {
    Profiles profiles;
    profiles.BindAs(service_, service_code_);
    return profiles;
}

User Site::user(const std::string& name) const {
    User user;
    try {
        user.BindAs(name, service_, service_code_);
    } catch (const Error& failure) {
        if (!is_missing_entry(failure)) throw;
        const auto is_of = [&](const char* method) {
            return failure.description().find(method) != std::string::npos;
        };
        if (is_of("OrvoMembership.Profile.BindAs"))
            throw std::runtime_error("the profile of '" + name +
                                     "' is not there: give the user another one with orvo users "
                                     "profile");
        if (is_of("OrvoMembership.Account.Init"))
            throw std::runtime_error("there is no account for the type of '" + name + "' in " +
                                     info_.GetAccountContainer().to<std::string>());
        throw std::runtime_error("there is no user '" + name + "'");
    }
    return user;
}

orvo::Profile Site::profile(const std::string& name) const {
    orvo::Profile profile;
    try {
        profile.BindAs(name, service_, service_code_);
    } catch (const Error& failure) {
        if (!is_missing_entry(failure)) throw;
        throw std::runtime_error("there is no profile '" + name + "'");
    }
    return profile;
}

LdapAccess Site::user_attributes(const std::string& name) const {
    LdapAccess entry;
    try {
        entry.BindAs(info_.GetUserNamingAttribute().to<std::string>() + "=" + name, service_,
                     service_code_, info_.GetServerName().to<std::string>(),
                     info_.GetUserContainer().to<std::string>());
    } catch (const Error& failure) {
        if (!is_missing_entry(failure)) throw;
        throw std::runtime_error("there is no user '" + name + "'");
    }
    return entry;
}

std::string Site::user_entry(const std::string& name) const {
    return info_.GetUserNamingAttribute().to<std::string>() + "=" + as_name_value(name) + "," +
           info_.GetUserContainer().to<std::string>();
}

std::string Site::profile_entry(const std::string& name) const {
    return info_.GetProfileNamingAttribute().to<std::string>() + "=" + as_name_value(name) + "," +
           info_.GetProfileContainer().to<std::string>();
}

}  // namespace orvo::admin
