#pragma once

#include <filesystem>
#include <string>

#include "host/admin/common/options.h"

namespace orvo::admin {

struct WhyRequest {
    std::filesystem::path site;  // empty: the system's
    std::string user;            // as it is typed into the login page
    bool has_password = false;   // it is asked for, and compared where that counts nowhere
    bool is_tried = false;       // it is asked for, and a login made with it
    std::string address = {};    // of the browser; empty: not known
    std::filesystem::path socket = usual_host_socket;
    bool is_json = false;
};
// Looks at each step of a user's login and prints what it would come to. Whether none refuses it.
// Raises std::exception where the directory cannot be asked.
bool explain_login(const WhyRequest& request);

}  // namespace orvo::admin
