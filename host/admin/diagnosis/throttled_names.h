#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvo::admin {

// The names under which the site's throttle may count attempts of the user who is called so: this
// full name itself, and where a directory finds users by several names, that of the entry and all
// others. Raises std::exception where the directory cannot be asked.
std::vector<std::string> throttled_names(const std::filesystem::path& site,
                                         const std::string& name);

}  // namespace orvo::admin
