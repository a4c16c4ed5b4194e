#pragma once

#include "host/web/intrinsics/page_context.h"
#include "host/web/pages/global_script.h"
#include "host/web/pages/page_cache.h"

namespace orvo::web {

// Carries a page of the site out, on the calling thread and in an object context of its own that
// holds the five intrinsic objects. What the page wrote is in the context's answer. `global`, where
// the site has a global.asa, begins the session of a browser that has none. Raises PageError and
// script::ScriptError; the answer is then of no use.
void run_page(const std::shared_ptr<PageContext>& page, PageCache& pages, const std::string& path,
              const GlobalScript* global = nullptr);
// The page that the browser asked for.
void run_page(const std::shared_ptr<PageContext>& page, PageCache& pages);

// Carries an event of global.asa out that is none of a page: the scripts find Application and
// Server, and at a session's end the context's session. Answers the handlers that global.asa has.
// Raises script::ScriptError.
Handlers run_event(const std::shared_ptr<PageContext>& page, const script::Program& global,
                   GlobalEvent event);

}  // namespace orvo::web
