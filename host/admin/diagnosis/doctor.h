#pragma once

#include <filesystem>

namespace orvo::admin {

struct DoctorRequest {
    std::filesystem::path site;  // empty: the system's
    bool is_json = false;
};
// Looks at every server of the site's list, or at the file of its embedded directory, changes
// nothing, and prints what it has seen. Whether nothing has failed. Raises std::exception where the
// settings cannot be read.
bool examine_site(const DoctorRequest& request);

}  // namespace orvo::admin
