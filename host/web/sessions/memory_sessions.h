#pragma once

#include <array>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <unordered_map>

#include "host/web/sessions/session_store.h"

namespace orvo::web {

using SessionClock = std::chrono::steady_clock;

struct SessionLimits {
    std::chrono::minutes timeout{20};    // what a new session has
    std::chrono::minutes absolute{720};  // after this it ends, however busy it is
    // Beyond this many, or this many bytes of values altogether, those go that were used longest
    // ago: first those without values, then those in which nobody has logged in, then the others.
    std::size_t most = 50'000;
    std::size_t most_bytes = 256 * 1024 * 1024;
    // Requests that wait for one session while another one has it; more are refused.
    std::size_t most_waiting = 5;
};

// How many requests of one session may be there at once where the site does not say it. Each that
// waits holds one of the workers that may wait for the directory: half of them, or as many as a
// browser has connections to a site (six), but two are left to others where there are more than
// that.
int usual_requests_of_one_session(int directory_workers);

// Sessions in the memory of this process.
class MemorySessions : public SessionStore {
public:
    explicit MemorySessions(SessionLimits limits = {},
                            std::function<SessionClock::time_point()> now = SessionClock::now);
    ~MemorySessions() override;

    std::unique_ptr<SessionLease> open(const std::string& id, std::chrono::milliseconds patience,
                                       const std::function<bool()>& try_wait = {}) override;
    std::unique_ptr<SessionLease> create() override;
    SessionLogin login_of(const std::string& id) override;

    // For sessions from now on; the bounds count with the next request, and a new timeout for new
    // sessions.
    void set_limits(const SessionLimits& limits);
    void on_end(std::function<void(SessionData)> take) override;
    void end_idle() override;
    void end_all() override;
    SessionCounts counts() const override;

    std::size_t count() const;
    // Of the values of those that no request has.
    std::size_t bytes() const;

private:
    class Lease;
    struct Session;
    using Order = std::list<std::shared_ptr<Session>>;

    // Nothing while its time has not run out.
    std::optional<SessionEnd> ended(const Session& session) const;
    void give_back(const std::shared_ptr<Session>& session);
    // `guard` holds the lock, but not while this waits.
    void wait_for(Session& session, std::unique_lock<std::mutex>& guard,
                  std::chrono::milliseconds patience, const std::function<bool()>& try_wait);
    // `why`: from a session to the reason to end it, or nothing.
    template <class Why>
    void end_where(Why why);
    // With the lock held.
    void place(Session& session);
    void drop(const std::shared_ptr<Session>& session, SessionEnd why);
    void drop_ended();
    // The one to go first, of those that no request has; null where there is none.
    std::shared_ptr<Session> oldest() const;

    SessionLimits limits_;
    const std::function<SessionClock::time_point()> now_;
    mutable std::mutex lock_;
    std::function<void(SessionData)> take_ended_;
    std::condition_variable given_back_;
    std::unordered_map<std::string, std::shared_ptr<Session>> sessions_;
    // By last use, oldest first: without values, without a login, with one.
    std::array<Order, 3> orders_;
    std::size_t bytes_ = 0;
    std::uint64_t made_ = 0;
    std::array<std::uint64_t, 5> ended_{};  // by SessionEnd
};

}  // namespace orvo::web
