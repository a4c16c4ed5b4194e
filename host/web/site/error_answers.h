#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/web/files/static_files.h"
#include "host/web/intrinsics/page_context.h"
#include "host/web/messages/error_page.h"
#include "host/web/site/served_site.h"
#include "host/web/site/web_log.h"

namespace orvo::web {

// What a browser is shown in place of what failed: the site's own page or file for that, or the
// built-in page. Any thread.
class ErrorAnswers {
public:
    // The context of a page of the site that answers a request.
    using OpenPage = std::function<std::shared_ptr<PageContext>(
        const ServedSite& served, const HttpRequest& request, const std::string& path)>;

    ErrorAnswers(StaticFiles& files, WebLog& log, bool shows_details, OpenPage open);

    // Logs a failure of a request; the built-in page for it.
    ErrorPage noted(const HttpRequest& request, const std::string& path, std::string sentence,
                    const std::string& cause, std::vector<std::string> details = {});
    // For a request that no page has answered: the site's own page, where there is one and it does
    // not fail, otherwise usual().
    HttpResponse answer(ServedSite& served, const HttpRequest& request, const ErrorPage& usual,
                        PageFailure failure = {});
    // Carries the site's own page out in the place of what a page has written. False where there is
    // none, and where it fails.
    bool try_page(ServedSite& served, const std::shared_ptr<PageContext>& page, int status,
                  PageFailure failure);
    // The site's own file, where it has one, or the built-in page.
    HttpResponse usual(const Site& site, const ErrorPage& usual);

private:
    StaticFiles& files_;
    WebLog& log_;
    const bool shows_details_;
    const OpenPage open_;
};

}  // namespace orvo::web
