#pragma once

#include <utility>
#include <vector>

#include "platform/values/text.h"

namespace orvo::web {

class PageContext;

using ServerVariables = std::vector<std::pair<Text, Text>>;

// What the server tells pages of a request: REQUEST_METHOD, SCRIPT_NAME, REMOTE_ADDR, HTTPS, and
// each header as HTTP_NAME, but for the session's and any other cookie's, which Request.Cookies
// has.
ServerVariables server_variables(const PageContext& page);

}  // namespace orvo::web
