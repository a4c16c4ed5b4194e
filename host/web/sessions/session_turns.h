#pragma once

// Requests of one session in this process: one has it, the others wait for their turn.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace orvo::web {

// One request's readiness to wait.
class SessionPatience {
public:
    // patience, try_wait: as SessionStore::open has them.
    SessionPatience(std::chrono::milliseconds patience, const std::function<bool()>& try_wait)
        : patience_(patience), try_wait_(try_wait) {}

    // Before each time that it waits; asks try_wait the first time, and then the patience begins.
    bool may_wait();
    std::chrono::steady_clock::time_point end() const { return end_; }
    bool has_waited() const { return has_asked_; }
    // Raise Refusal (503).
    [[noreturn]] static void refuse();
    [[noreturn]] static void give_up();

private:
    const std::chrono::milliseconds patience_;
    const std::function<bool()>& try_wait_;
    bool has_asked_ = false;
    bool may_wait_ = true;
    std::chrono::steady_clock::time_point end_{};
};

// Under its owner's lock.
struct SessionTurns {
    bool is_taken = false;
    std::size_t waiting = 0;  // requests
};

// Until nobody has the turn. `guard` holds the lock, but not while this waits; `changed` is
// notified when a turn ends. Raises Refusal (503) where `most_waiting` wait already, and where the
// request may not wait, or not as long.
void wait_for_turn(SessionTurns& turns, std::unique_lock<std::mutex>& guard,
                   std::condition_variable& changed, std::size_t most_waiting,
                   SessionPatience& patience);

}  // namespace orvo::web
