#pragma once

#include <filesystem>
#include <string>

namespace orvo::admin {

// `orvo init`: makes what a site on an embedded directory needs and does not have yet: its settings
// (site.ini and what that names), the directory with its containers, the service account and its
// password file, a password policy, and the first administrator, whose one-time password is printed
// and has to be changed at the first login.
struct InitRequest {
    std::filesystem::path site;  // the site's settings; empty: where the component looks for them
    // Where the directory and the password file go, if the settings are made here.
    std::filesystem::path data = "/var/lib/orvo";
    std::string administrator = "admin";
    // Whose files they are to be, by name: for root. Empty: the user "orvo", where there is one.
    std::string owner = {};
};

// Raises std::exception with what went wrong; nothing is half done then. A directory that is there
// already is left alone, which is a failure, too.
void init_site(const InitRequest& request);

}  // namespace orvo::admin
