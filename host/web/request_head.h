#pragma once

#include <string_view>

#include "host/web/http_message.h"

namespace orvo::web {

// Fills method, target, version and headers from the bytes of a request up to its empty line.
// Values are as they were sent, without the blanks around them. Raises Refusal: 400 for what is no
// request, 431 for more than `most_headers` headers.
void read_head(std::string_view head, std::size_t most_headers, HttpRequest& request);

// How many bytes of a body follow. Raises Refusal: 400 for a length that is none or given twice
// differently, 411 for a body without a length, 413 for more than `largest`.
std::size_t body_length(const HttpRequest& request, std::size_t largest);

}  // namespace orvo::web
