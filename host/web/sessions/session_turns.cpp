#include "host/web/sessions/session_turns.h"

#include "host/web/messages/http_message.h"

namespace orvo::web {

bool SessionPatience::may_wait() {
    if (!std::exchange(has_asked_, true)) {
        may_wait_ = !try_wait_ || try_wait_();
        end_ = std::chrono::steady_clock::now() + patience_;
    }
    return may_wait_;
}

void SessionPatience::refuse() {
    throw Refusal(503, "Another request of this session runs, and too many requests wait.");
}

void SessionPatience::give_up() {
    throw Refusal(503, "Another request of this session takes too long.");
}

void wait_for_turn(SessionTurns& turns, std::unique_lock<std::mutex>& guard,
                   std::condition_variable& changed, std::size_t most_waiting,
                   SessionPatience& patience) {
    if (turns.waiting >= most_waiting)
        throw Refusal(503, "Too many requests of this session wait.");
    ++turns.waiting;
    guard.unlock();
    const bool may_wait = patience.may_wait();
    guard.lock();
    const bool is_free =
        may_wait && changed.wait_until(guard, patience.end(), [&] { return !turns.is_taken; });
    --turns.waiting;
    if (!may_wait) SessionPatience::refuse();
    if (!is_free) SessionPatience::give_up();
}

}  // namespace orvo::web
