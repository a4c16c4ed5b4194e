#pragma once

#include "host/web/intrinsics/intrinsics.h"
#include "host/web/intrinsics/page_context.h"

namespace orvo::web {

// Request.Files.
Object files_object(std::shared_ptr<PageContext> page);

// Whether the site would take a file (whose links are resolved) for one of its pages, or for a part
// of one: no page may write it.
bool is_part_of_pages(const PageContext& page, const std::filesystem::path& file);

// How many bytes a page asks for. Raises 5 for a negative number.
std::uint64_t count_of_bytes(const Variant& count);

}  // namespace orvo::web
