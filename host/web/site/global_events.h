#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

#include "host/web/intrinsics/page_context.h"
#include "host/web/pages/global_script.h"
#include "host/web/sessions/application_state.h"
#include "host/web/sessions/session_store.h"
#include "host/web/site/web_log.h"

namespace orvo::web {

// The life of a site as its global.asa sees it. Any thread.
//
// The file is read before the first page, and kept until the program ends. Sessions that have ended
// wait for Session_OnEnd in a queue, which a thread of its own carries out; none is left out of it,
// however it ended, but for those that are still in it `patience` after the program was asked to
// end. What a handler of theirs raises is logged.
class GlobalEvents {
public:
    struct Options {
        std::chrono::seconds time_limit{30};          // of each handler
        std::chrono::milliseconds patience{10'000};   // at the end, for all sessions together
        std::chrono::milliseconds look_every{5'000};  // for sessions whose time has run out
    };

    GlobalEvents(std::filesystem::path root, ApplicationState& application, SessionStore& sessions,
                 WebLog& log, Options options);
    // As stop().
    ~GlobalEvents();
    GlobalEvents(const GlobalEvents&) = delete;
    GlobalEvents& operator=(const GlobalEvents&) = delete;

    // Of each handler that begins from now on.
    void set_time_limit(std::chrono::seconds limit) { time_limit_ = limit; }

    // Before each page: the first time it reads the file and carries Application_OnStart out, while
    // the others wait. Raises PageError and script::ScriptError to all that waited; the next page
    // tries again. Null where the site has no global.asa.
    const GlobalScript* start();

    // When no page runs any more: Session_OnEnd for all sessions, then Application_OnEnd.
    void stop();

private:
    enum class State { idle, starting, started, stopped };

    std::optional<GlobalScript> begin();
    void queue(SessionData ended);
    void run_queue();
    // Of the first session in the queue. With the lock held, but for the time of the handler.
    void end_session(std::unique_lock<std::mutex>& guard);
    std::shared_ptr<PageContext> context() const;
    void carry_out(GlobalEvent event, const std::shared_ptr<PageContext>& page);

    const std::filesystem::path root_;
    ApplicationState& application_;
    SessionStore& sessions_;
    WebLog& log_;
    const Options options_;
    std::atomic<std::chrono::seconds> time_limit_;

    std::mutex lock_;
    std::condition_variable changed_;
    State state_ = State::idle;
    int attempts_ = 0;
    std::exception_ptr failure_;  // of the last attempt
    std::optional<GlobalScript> script_;
    std::deque<SessionData> ended_;
    bool is_stopping_ = false;
    std::thread thread_;  // where there is a Session_OnEnd
};

}  // namespace orvo::web
