#pragma once

#include "host/web/page_cache.h"
#include "host/web/page_context.h"

namespace orvo::web {

// Carries out the page of a context, on the calling thread and in an object context of its own that
// holds the five intrinsic objects. What the page wrote is in the context's answer. Raises
// PageError and script::ScriptError; the answer is then of no use.
void run_page(const std::shared_ptr<PageContext>& page, PageCache& pages);

}  // namespace orvo::web
