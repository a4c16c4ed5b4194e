#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <unordered_map>

#include "host/web/session_store.h"

namespace orvo::web {

using SessionClock = std::chrono::steady_clock;

struct SessionLimits {
    std::chrono::minutes timeout{20};    // what a new session has
    std::chrono::minutes absolute{720};  // after this it ends, however busy it is
    // Beyond this many, the one that was used longest ago goes, those without values first.
    std::size_t most = 50'000;
};

// Sessions in the memory of this process.
class MemorySessions : public SessionStore {
public:
    explicit MemorySessions(SessionLimits limits = {},
                            std::function<SessionClock::time_point()> now = SessionClock::now);
    ~MemorySessions() override;

    std::unique_ptr<SessionLease> open(const std::string& id,
                                       std::chrono::milliseconds patience) override;
    std::unique_ptr<SessionLease> create() override;

    std::size_t count() const;

private:
    class Lease;
    struct Session;
    using Order = std::list<std::shared_ptr<Session>>;

    bool has_ended(const Session& session) const;
    void give_back(const std::shared_ptr<Session>& session);
    // With the lock held.
    void drop(const std::shared_ptr<Session>& session);
    void make_room();

    const SessionLimits limits_;
    const std::function<SessionClock::time_point()> now_;
    mutable std::mutex lock_;
    std::condition_variable given_back_;
    std::unordered_map<std::string, std::shared_ptr<Session>> sessions_;
    // By last use, oldest first: sessions without values, and the others.
    Order unused_;
    Order used_;
    std::uint64_t made_ = 0;
};

}  // namespace orvo::web
