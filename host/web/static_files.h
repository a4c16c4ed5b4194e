#pragma once

#include <filesystem>
#include <string_view>

#include "host/web/http_message.h"

namespace orvo::web {

// The content type of a file that may be sent as it is; empty for any other one. What pages are
// made of (.asp, .inc, .ini) is never sent, nor is a file of a kind that is not known.
std::string_view content_type_of(const std::filesystem::path& file);

// A file as it stands; 304 where the browser has it already.
HttpResponse static_file(const std::filesystem::path& file, const HttpRequest& request);

}  // namespace orvo::web
