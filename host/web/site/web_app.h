#pragma once

#include <atomic>
#include <mutex>

#include "host/web/files/static_files.h"
#include "host/web/intrinsics/page_context.h"
#include "host/web/metrics/web_metrics.h"
#include "host/web/pages/waiting_pages.h"
#include "host/web/site/directory_health.h"
#include "host/web/site/error_answers.h"
#include "host/web/site/global_events.h"
#include "host/web/site/site.h"
#include "host/web/site/web_log.h"

namespace orvo::web {

struct SitePath;

// A site: answers requests. Any number of threads at once; each is an apartment of its own.
class WebApp {
public:
    struct Options {
        bool shows_details = false;  // of failures, to the browser
        std::chrono::milliseconds session_patience{30'000};
        // Where requests are counted.
        std::shared_ptr<WebMetrics> metrics = std::make_shared<WebMetrics>();
        // Null: one in memory.
        std::shared_ptr<ApplicationState> application = {};
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

    // Of "/health/live" and "/health/ready"; raises Refusal (404) for any other path. The latter
    // may take seconds.
    HttpResponse health(const std::string& path);
    // It is ready no longer, and goes on: for balancers, before the end.
    void leave() { is_leaving_ = true; }

    // Serves by other settings from now on; a request that runs keeps those that it began with.
    // Raises what the constructor does, and then nothing has changed.
    void replace(Site site);
    Site site() const { return served()->site; }

    ApplicationState& application() { return *application_; }

private:
    // What a request's line in the log and its figures say of it.
    struct Noted {
        std::string note = {};
        AnswerKind kind = AnswerKind::other;
    };

    static std::shared_ptr<ServedSite> serve(Site site);
    // By one thread at a time.
    void need_filter(const Site& site);
    std::shared_ptr<ServedSite> served() const;

    HttpResponse route(ServedSite& served, const HttpRequest& request, Noted& noted);
    HttpResponse file(const ServedSite& served, const HttpRequest& request, const SitePath& found);
    HttpResponse page(ServedSite& served, const HttpRequest& request, const SitePath& found,
                      std::string& note);
    // Carries it out, and counts how that ended.
    void run(ServedSite& served, const std::shared_ptr<PageContext>& page);
    std::shared_ptr<PageContext> open(const ServedSite& served, const HttpRequest& request,
                                      const std::string& path);
    // Opens the session where the page is of no use without one. False where a guard does not let
    // the browser in.
    bool enter(const ServedSite& served, PageContext& page, const SitePath& found) const;
    // Whether the guard lets this login through, or the path needs none.
    bool is_open(const ServedSite& served, const HttpRequest& request, const SessionLogin& login,
                 const RequestFields& cookies, const SitePath& found) const;

    mutable std::mutex lock_;
    std::shared_ptr<ServedSite> served_;
    SessionStore& sessions_;
    DirectoryHealth& health_;
    WebLog& log_;
    const Options options_;
    std::atomic<bool> is_leaving_ = false;
    const std::shared_ptr<ApplicationState> application_;
    bool has_filter_ = false;  // the application has its connector
    WaitingPages seen_pages_;
    StaticFiles files_;
    ErrorAnswers errors_;
    GlobalEvents events_;
};

// The path of a request's target, decoded. Raises Refusal (400) for one that no address of a site
// has: not UTF-8, control characters, "\", empty parts, "." and "..".
std::string decoded_path(std::string_view target);

}  // namespace orvo::web
