#pragma once

#include <string_view>

#include "platform/values/text.h"

namespace orvo::web {

// Whether a browser that is sent there stays on this site: a path from the site's folder, with or
// without a query, and nothing that browsers take for the name of another host ("//x", "/\x") or
// that breaks a header.
bool is_local_url(TextView url);

}  // namespace orvo::web
