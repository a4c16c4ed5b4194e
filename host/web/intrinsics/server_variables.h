#pragma once

#include <utility>
#include <vector>

#include "platform/values/text.h"

namespace orvo::web {

class PageContext;

using ServerVariables = std::vector<std::pair<Text, Text>>;

// What the server tells pages of a request: REQUEST_METHOD, SCRIPT_NAME, REMOTE_ADDR, HTTPS, and
// each header as HTTP_NAME. Cookies are left out, which Request.Cookies has, and so is what a
// browser proves itself by (Authorization): pages write variables into logs and mails.
ServerVariables server_variables(const PageContext& page);

// Names without regard to case; the empty text where there is none.
Text value_of(const ServerVariables& variables, TextView name);

}  // namespace orvo::web
