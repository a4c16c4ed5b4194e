#pragma once

// Locks in the shared store that end by themselves, so that a machine that dies or loses its way
// keeps nobody waiting for longer than a lock's life.

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "suite/store/command.h"
#include "suite/store/reply.h"

namespace orvo::web {

// The beginning of a script: now, in milliseconds since 1970, as the first argument says it, or by
// the store's own clock.
inline constexpr std::string_view lua_now =
    "local now = tonumber(ARGV[1])\n"
    "if not now then\n"
    "  local time = redis.call('TIME')\n"
    "  now = time[1] * 1000 + math.floor(time[2] / 1000)\n"
    "end\n";

// Releases a lock, in scripts. Answers 1 where it was locked with this token, 0 otherwise.
inline constexpr std::string_view lua_release =
    "local function release(key, token)\n"
    "  if redis.pcall('HGET', key, 't') ~= token then return 0 end\n"
    "  return redis.call('HDEL', key, 'u')\n"
    "end\n";

// A lock is two fields of a hash: "t", a text that nobody else has made, tells who took it last,
// "u" until when he has it, in the store's milliseconds; no "u": he has released it. Scripts take
// and release locks together with what they guard, and check that "t" is still their own before
// they write. The objects of this class do what is left: one thread extends the locks of requests
// that last, and releases those whose holder does not wait for it, or could not reach the store.
//
// Any thread.
class SharedLocks {
public:
    // A request that wants the lock of a machine that has died waits for that long. A lock that has
    // run out is still its holder's until somebody else takes it, so a machine that loses the store
    // for a moment loses nothing by that.
    static constexpr std::chrono::milliseconds life{2000};
    // How long a lock that is released soon may wait for others to be released with.
    static constexpr std::chrono::milliseconds usual_gathering{2};

    struct Lock {
        std::string key;
        std::string token;
        bool operator==(const Lock&) const = default;
    };

    // Runs a script with the time, as lua_now reads it, in front of the arguments. May raise
    // anything.
    using Run = std::function<store::Reply(const store::Script& script,
                                           const std::vector<std::string>& keys,
                                           std::vector<std::string> arguments)>;

    explicit SharedLocks(Run run, std::chrono::milliseconds gathering = usual_gathering);
    // Waits for what the thread has begun, and for the locks that were to be released soon.
    ~SharedLocks();
    SharedLocks(const SharedLocks&) = delete;
    SharedLocks& operator=(const SharedLocks&) = delete;

    // The lock has been taken: it is extended from now on.
    void hold(const std::string& key, const std::string& token);
    // Its holder has released it, or lost it.
    void let_go(const std::string& token);
    // Releases it now, or as release_later. Raises nothing.
    void release(const std::string& key, const std::string& token);
    // It is released within `gathering`, by the thread or by whoever takes it along.
    void release_soon(const std::string& key, const std::string& token);
    // Those that are to be released soon. The caller releases them, by lua_release in a script that
    // it runs anyway, or hands them to release_later.
    std::vector<Lock> take_along();
    // They are released as soon as the store can be reached, if they have been taken at all: a
    // command may arrive whose answer nobody waits for any more. Beyond a thousand such locks or so
    // the later ones end by themselves.
    void release_later(std::vector<Lock> locks);

private:
    using Clock = std::chrono::steady_clock;
    struct Held {
        std::string key;
        Clock::time_point since;
    };
    struct Left {
        Lock lock;
        // How long it is tried where the store knows of no such lock: max before its first answer.
        Clock::time_point until;
    };

    void work();
    void extend_held(std::unique_lock<std::mutex>& guard);
    void release_left(std::unique_lock<std::mutex>& guard);
    // With the lock held.
    void leave(std::vector<Lock> locks, Clock::time_point until);
    void leave_soon();
    // Of each, whether it was locked with its token.
    std::vector<bool> run(const store::Script& script, const std::vector<Lock>& locks,
                          std::vector<std::string> arguments = {});

    const Run run_;
    const std::chrono::milliseconds gathering_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::map<std::string, Held, std::less<>> held_;  // by token
    std::vector<Lock> soon_;
    std::vector<Left> left_;
    // When they are due; max where there are none.
    Clock::time_point soon_at_ = Clock::time_point::max(), left_at_ = Clock::time_point::max();
    Clock::time_point wakes_at_{};  // the thread
    bool is_ending_ = false;
    std::thread thread_;
};

// Between the attempts to take a lock that another machine has: short at first, then longer.
class GrowingPause {
public:
    std::chrono::milliseconds next() {
        const auto pause = pause_;
        pause_ = std::min(pause_ * 2, std::chrono::milliseconds(40));
        return pause;
    }
    // Not while all of them together are as long as a lock waits that is released soon.
    bool is_long() const { return pause_ > SharedLocks::usual_gathering * 2; }

private:
    std::chrono::milliseconds pause_{1};
};

}  // namespace orvo::web
