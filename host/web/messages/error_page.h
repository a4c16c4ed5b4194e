#pragma once

#include <string>
#include <vector>

#include "host/web/messages/http_message.h"

namespace orvo::web {

// What a browser gets in place of a page.
struct ErrorPage {
    int status = 500;
    std::string sentence;                   // for the person in front of the browser
    std::string reference = {};             // under which the log has more
    std::vector<std::string> details = {};  // for the site's maker
};

HttpResponse error_response(const ErrorPage& page);

}  // namespace orvo::web
