#pragma once

#include <mutex>
#include <optional>
#include <unordered_map>

#include "host/web/sessions/session_store.h"
#include "host/web/sessions/session_turns.h"
#include "host/web/sessions/shared_store.h"

namespace orvo::web {

// Sessions that all machines of a site share. A request takes its session with one round trip to
// the store, which locks it. One that it has changed is written and given back with another; one
// that it has not is given back within SharedLocks::usual_gathering, and nobody waits for that. A
// session is made with one round trip. What the store holds is sealed, under names from which no
// identifier follows.
//
// A request whose machine dies or is cut off keeps its session locked for SharedLocks::life at
// most; one that comes back later than that writes nothing. Of those that end each is taken by one
// machine; it tells its on_end, unless it dies or loses the store just then.
class RedisSessions : public SessionStore {
public:
    // long_request: one that lasts longer counts as a use of its session at its end as well.
    explicit RedisSessions(SharedStore& store, SessionLimits limits = {},
                           std::chrono::milliseconds long_request = std::chrono::seconds(5));
    ~RedisSessions() override;

    Reach reach() const override { return Reach::fleet; }
    std::chrono::minutes timeout() const override { return limits().timeout; }
    std::unique_ptr<SessionLease> open(const std::string& id, std::chrono::milliseconds patience,
                                       const std::function<bool()>& try_wait = {}) override;
    std::unique_ptr<SessionLease> create() override;
    SessionLogin login_of(const std::string& id) override;
    void require() override;

    void set_limits(const SessionLimits& limits) override;
    void on_end(std::function<void(SessionData)> take) override;
    void end_idle() override;
    void end_all() override {}
    SessionCounts counts() const override;
    std::optional<SharedSessionCounts> shared_counts() override;

private:
    class Lease;
    class Turn;

    SessionLimits limits() const;
    // open() without its patience: the script's answer.
    store::Reply ask_for(const std::string& name, const std::string& key, const std::string& token);
    void wait_for_others(SessionPatience& request, GrowingPause& pause);
    // With the lock held.
    void drop_unused(const std::string& name);
    // What stands under this name; nothing for what this machine cannot read.
    std::optional<SessionData> try_unsealed(const std::string& key,
                                            const std::string& sealed) const;
    void tell_ended(SessionData session, SessionEnd why);
    // Names and what stood under them, one after the other, the last ones for room.
    void tell_ended(const store::Reply::List& ended, std::size_t for_room);
    std::string key_of(const std::string& name) const { return store_.key("session", name); }
    // A session's key, and those of the lists.
    std::vector<std::string> keys_of(const std::string& key) const;

    SharedStore& store_;
    const std::chrono::milliseconds long_request_;
    const std::vector<std::string> list_keys_;  // by rank, and the size of all
    mutable std::mutex lock_;
    SessionLimits limits_;
    SessionCounts counts_;
    std::condition_variable turn_ended_;
    std::unordered_map<std::string, SessionTurns> turns_;  // by name
    std::mutex end_lock_;
    std::function<void(SessionData)> take_ended_;
};

}  // namespace orvo::web
