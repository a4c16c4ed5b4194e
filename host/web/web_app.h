#pragma once

#include "host/web/directory_health.h"
#include "host/web/error_page.h"
#include "host/web/page_cache.h"
#include "host/web/page_context.h"
#include "host/web/site.h"
#include "host/web/web_log.h"

namespace orvo::web {

// A site: answers requests. Any number of threads at once; each is an apartment of its own.
class WebApp {
public:
    struct Options {
        bool shows_details = false;  // of failures, to the browser
        std::chrono::milliseconds session_patience{30'000};
    };

    // Puts the authorization filter's connector into the application. Raises 429 where there is
    // none although the site guards paths.
    WebApp(Site site, SessionStore& sessions, DirectoryHealth& health, WebLog& log,
           Options options);

    HttpResponse handle(const HttpRequest& request);
    // Where handle() is to be called for it.
    Lane lane_of(const HttpRequest& request) const;
    // The server's own answer to a request that handle() does not see: completes it and logs it.
    void note_refused(const HttpRequest& request, HttpResponse& response,
                      std::chrono::steady_clock::duration duration);

    ApplicationState& application() { return application_; }

private:
    HttpResponse route(const HttpRequest& request, std::string& note);
    HttpResponse health(const std::string& path);
    HttpResponse file(const HttpRequest& request, const std::string& path);
    HttpResponse page(const HttpRequest& request, const std::string& path, std::string& note);
    std::shared_ptr<PageContext> open(const HttpRequest& request, const std::string& path);
    bool is_open(PageContext& page, const std::string& path) const;
    HttpResponse to_login(const HttpRequest& request) const;
    HttpResponse failed(const std::string& path, std::string sentence, const std::string& cause,
                        std::vector<std::string> details = {});
    void add_security_headers(HttpResponse& response) const;

    const Site site_;
    const Text login_cookie_;
    SessionStore& sessions_;
    DirectoryHealth& health_;
    WebLog& log_;
    const Options options_;
    ApplicationState application_;
    PageCache pages_;
};

// The path of a request's target, decoded. Raises Refusal (400) for one that no address of a site
// has: not UTF-8, control characters, "\", empty parts, "." and "..".
std::string decoded_path(std::string_view target);

}  // namespace orvo::web
