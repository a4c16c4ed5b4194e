#include "host/web/sessions/shared_locks.h"

#include <utility>

namespace orvo::web {
namespace {

constexpr std::chrono::milliseconds extend_every = SharedLocks::life / 4;
constexpr std::chrono::milliseconds release_every{100};
constexpr std::size_t most_left = 1000;
constexpr auto never = std::chrono::steady_clock::time_point::max();

// Keys: locks. Arguments: their tokens, and for `extend` before them their life. Answer 1 for each
// that is locked, otherwise 0.
const store::Script& extend_script() {
    static const store::Script script(std::string(lua_now) +
                                      R"(
local answer = {}
for i, key in ipairs(KEYS) do
  local lock = redis.pcall('HMGET', key, 't', 'u')
  local is_locked = lock[1] == ARGV[2 + i] and lock[2]
  if is_locked then redis.call('HSET', key, 'u', now + ARGV[2]) end
  answer[i] = is_locked and 1 or 0
end
return answer)");
    return script;
}

const store::Script& release_script() {
    static const store::Script script(std::string(lua_release) + R"(
local answer = {}
for i, key in ipairs(KEYS) do answer[i] = release(key, ARGV[1 + i]) end
return answer)");
    return script;
}

}  // namespace

SharedLocks::SharedLocks(Run run, std::chrono::milliseconds gathering)
    : run_(std::move(run)), gathering_(gathering), thread_([this] { work(); }) {}

SharedLocks::~SharedLocks() {
    {
        const std::lock_guard guard(lock_);
        is_ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

// The thread is not woken: most locks are gone when it looks next.
void SharedLocks::hold(const std::string& key, const std::string& token) {
    const std::lock_guard guard(lock_);
    held_.try_emplace(token, key, Clock::now());
}

void SharedLocks::let_go(const std::string& token) {
    const std::lock_guard guard(lock_);
    held_.erase(token);
}

void SharedLocks::release(const std::string& key, const std::string& token) {
    let_go(token);
    try {
        run(release_script(), {{key, token}});
    } catch (const std::exception&) {
        release_later({{key, token}});
    }
}

void SharedLocks::release_soon(const std::string& key, const std::string& token) {
    bool sleeps_too_long = false;
    {
        const std::lock_guard guard(lock_);
        held_.erase(token);
        if (soon_.empty()) soon_at_ = Clock::now() + gathering_;
        soon_.push_back({key, token});
        sleeps_too_long = soon_at_ < wakes_at_;
    }
    if (sleeps_too_long) changed_.notify_all();
}

std::vector<SharedLocks::Lock> SharedLocks::take_along() {
    const std::lock_guard guard(lock_);
    soon_at_ = never;
    return std::exchange(soon_, {});
}

void SharedLocks::release_later(std::vector<Lock> locks) {
    {
        const std::lock_guard guard(lock_);
        for (const Lock& lock : locks) held_.erase(lock.token);
        if (left_.size() < most_left) leave(std::move(locks), never);
    }
    changed_.notify_all();
}

void SharedLocks::leave(std::vector<Lock> locks, Clock::time_point until) {
    for (Lock& lock : locks) left_.push_back({std::move(lock), until});
    left_at_ = Clock::now();
}

void SharedLocks::leave_soon() {
    leave(std::exchange(soon_, {}), {});
    soon_at_ = never;
}

void SharedLocks::work() {
    auto extend_at = Clock::now() + extend_every;
    std::unique_lock guard(lock_);
    while (!is_ending_) {
        wakes_at_ = std::min({extend_at, soon_at_, left_at_});
        changed_.wait_until(guard, wakes_at_);
        const auto now = Clock::now();
        if (now >= extend_at) {
            extend_held(guard);
            extend_at = now + extend_every;
        }
        if (now >= soon_at_) leave_soon();
        if (now >= left_at_) release_left(guard);
    }
    leave_soon();
    release_left(guard);
}

void SharedLocks::extend_held(std::unique_lock<std::mutex>& guard) {
    std::vector<Lock> due;
    for (const auto& [token, held] : held_)
        if (Clock::now() - held.since >= extend_every / 2) due.push_back({held.key, token});
    if (due.empty()) return;
    guard.unlock();
    std::vector<bool> is_locked;
    try {
        is_locked = run(extend_script(), due, {std::to_string(life.count())});
    } catch (const std::exception&) {
        // The store is away: the next time, or the locks end.
    }
    guard.lock();
    for (std::size_t i = 0; i < is_locked.size(); ++i)
        if (!is_locked[i]) held_.erase(due[i].token);
}

void SharedLocks::release_left(std::unique_lock<std::mutex>& guard) {
    std::vector<Left> left = std::exchange(left_, {});
    left_at_ = never;
    if (left.empty()) return;
    guard.unlock();
    std::vector<Lock> locks;
    for (const Left& one : left) locks.push_back(one.lock);
    try {
        const std::vector<bool> was_locked = run(release_script(), locks);
        const auto now = Clock::now();
        for (std::size_t i = 0; i < left.size(); ++i)
            left[i].until = was_locked[i] ? now : std::min(left[i].until, now + life);
        std::erase_if(left, [&](const Left& one) { return one.until <= now; });
    } catch (const std::exception&) {
        // The store is away: they are tried again.
    }
    guard.lock();
    if (left.empty()) return;
    left_.insert(left_.begin(), left.begin(), left.end());
    left_at_ = std::min(left_at_, Clock::now() + release_every);
}

std::vector<bool> SharedLocks::run(const store::Script& script, const std::vector<Lock>& locks,
                                   std::vector<std::string> arguments) {
    std::vector<std::string> keys;
    for (const Lock& lock : locks) {
        keys.push_back(lock.key);
        arguments.push_back(lock.token);
    }
    const store::Reply reply = run_(script, keys, std::move(arguments));
    std::vector<bool> was_locked;
    for (const store::Reply& one : reply.list()) was_locked.push_back(one.integer() == 1);
    was_locked.resize(locks.size());
    return was_locked;
}

}  // namespace orvo::web
