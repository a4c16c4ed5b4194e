#pragma once

#include "host/web/pages/page_cache.h"
#include "host/web/site/site.h"

namespace orvo::web {

// A site as it was last read, and its pages.
struct ServedSite {
    ServedSite(Site read, Text cookie)
        : site(std::move(read)), login_cookie(std::move(cookie)), pages(site.root) {}
    const Site site;
    const Text login_cookie;  // the name
    PageCache pages;
};

}  // namespace orvo::web
