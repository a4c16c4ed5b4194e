#pragma once

#include <string>

#include "host/web/messages/http_message.h"

namespace orvo::web {

// How the end of an answer's body is told.
enum class Framing { none, length, chunks, close };

// Whether answers of this status have a body.
bool has_body(int status);

// Status line and headers of an answer, up to the empty line. Line breaks within a header become
// blanks; headers that are the server's own business (length, encoding, connection) are left out.
std::string answer_head(const HttpResponse& response, Framing framing, const Headers& more);

}  // namespace orvo::web
