#pragma once

#include "host/web/intrinsics.h"
#include "host/web/page_context.h"

namespace orvo::web {

// Request.Files.
Object files_object(std::shared_ptr<PageContext> page);

// How many bytes a page asks for. Raises 5 for a negative number.
std::uint64_t count_of_bytes(const Variant& count);

}  // namespace orvo::web
