#pragma once

#include <array>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <unordered_map>

#include "host/web/sessions/session_store.h"
#include "host/web/sessions/session_turns.h"

namespace orvo::web {

using SessionClock = std::chrono::steady_clock;

// Sessions in the memory of this process.
class MemorySessions : public SessionStore {
public:
    explicit MemorySessions(SessionLimits limits = {},
                            std::function<SessionClock::time_point()> now = SessionClock::now);
    ~MemorySessions() override;

    Reach reach() const override { return Reach::process; }
    std::chrono::minutes timeout() const override;
    std::unique_ptr<SessionLease> open(const std::string& id, std::chrono::milliseconds patience,
                                       const std::function<bool()>& try_wait = {}) override;
    std::unique_ptr<SessionLease> create() override;
    SessionLogin login_of(const std::string& id) override;

    void require() override {}
    void set_limits(const SessionLimits& limits) override;
    void on_end(std::function<void(SessionData)> take) override;
    void end_idle() override;
    void end_all() override;
    SessionCounts counts() const override;

private:
    class Lease;
    struct Session;
    using Order = std::list<std::shared_ptr<Session>>;

    // Nothing while its time has not run out.
    std::optional<SessionEnd> ended(const Session& session) const;
    void give_back(const std::shared_ptr<Session>& session);
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
    std::array<Order, session_ranks> orders_;  // by last use, oldest first
    std::size_t bytes_ = 0;                    // of the values of those that no request has
    SessionCounts counts_;
};

}  // namespace orvo::web
