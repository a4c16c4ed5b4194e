#include "host/web/sessions/shared_locks.h"

#include <utility>

namespace orvo::web {
namespace {

constexpr std::chrono::milliseconds extend_every = SharedLocks::life / 4;
constexpr std::chrono::milliseconds release_every{100};
constexpr std::size_t most_left = 1000;

const store::Script& extend_script() {
    static const store::Script script(std::string(lua_now) +
                                      R"(
local lock = redis.call('HMGET', KEYS[1], 't', 'u')
if lock[1] ~= ARGV[2] or lock[2] == '0' then return 0 end
redis.call('HSET', KEYS[1], 'u', now + ARGV[3])
return 1)");
    return script;
}

const store::Script& release_script() {
    static const store::Script script(R"(
local lock = redis.call('HMGET', KEYS[1], 't', 'u')
if lock[1] ~= ARGV[2] or lock[2] == '0' then return 0 end
redis.call('HSET', KEYS[1], 'u', 0)
return 1)");
    return script;
}

}  // namespace

SharedLocks::SharedLocks(Run run) : run_(std::move(run)), thread_([this] { work(); }) {}

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
    try {
        let_go(token);
        run_(release_script(), key, {token});
    } catch (const std::exception&) {
        release_later(key, token);
    }
}

void SharedLocks::release_later(const std::string& key, const std::string& token) {
    {
        const std::lock_guard guard(lock_);
        held_.erase(token);
        if (left_.size() >= most_left) return;
        left_.push_back({key, token, Clock::time_point::max()});
    }
    changed_.notify_all();
}

void SharedLocks::work() {
    auto extend_at = Clock::now() + extend_every;
    std::unique_lock guard(lock_);
    while (!is_ending_) {
        const auto until =
            left_.empty() ? extend_at : std::min(extend_at, Clock::now() + release_every);
        changed_.wait_until(guard, until);
        if (is_ending_) return;
        if (Clock::now() >= extend_at) {
            extend_held(guard);
            extend_at = Clock::now() + extend_every;
        }
        release_left(guard);
    }
}

void SharedLocks::extend_held(std::unique_lock<std::mutex>& guard) {
    std::vector<std::pair<std::string, std::string>> due;
    for (const auto& [token, held] : held_)
        if (Clock::now() - held.since >= extend_every / 2) due.emplace_back(token, held.key);
    guard.unlock();
    std::vector<std::string> lost;
    try {
        for (const auto& [token, key] : due)
            if (run_(extend_script(), key, {token, std::to_string(life.count())}).integer() == 0)
                lost.push_back(token);
    } catch (const std::exception&) {
        // The store is away: the next time, or the locks end.
    }
    guard.lock();
    for (const std::string& token : lost) held_.erase(token);
}

void SharedLocks::release_left(std::unique_lock<std::mutex>& guard) {
    if (left_.empty()) return;
    std::vector<Left> left = std::exchange(left_, {});
    guard.unlock();
    std::vector<Left> still;
    bool is_away = false;
    for (Left& lock : left) {
        try {
            if (!is_away && run_(release_script(), lock.key, {lock.token}).integer() == 1) continue;
            if (!is_away) lock.until = std::min(lock.until, Clock::now() + life);
        } catch (const std::exception&) {
            is_away = true;  // all that are left are tried again
        }
        if (is_away || Clock::now() < lock.until) still.push_back(std::move(lock));
    }
    guard.lock();
    left_.insert(left_.begin(), still.begin(), still.end());
}

}  // namespace orvo::web
