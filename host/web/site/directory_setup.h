#pragma once

#include <filesystem>
#include <string>

#include "host/web/site/site.h"

namespace orvo::web {

// Tells the directory provider how the site keeps connections and entries, where it says so. Raises
// what the provider refuses, by the name of the setting.
void set_up_directory(const Site& site);

// A sentence where the site configuration holds a password and everybody on this machine may read
// it; empty otherwise, also where it cannot be read at all, which the first page will tell.
std::string warning_of_open_password(const std::filesystem::path& configuration);

// A sentence where the site configuration's sections of the audit or the throttle are wrong, which
// keeps everybody from logging in; empty otherwise.
std::string warning_of_closed_logins();

}  // namespace orvo::web
