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

// A lock is two fields of a hash: "t", a text that nobody else has made, tells who took it last,
// "u" until when he has it, in the store's milliseconds; 0: he has released it. Scripts take and
// release locks together with what they guard, and check that "t" is still their own before they
// write. The objects of this class do what is left: one thread extends the locks of requests that
// last, and releases those whose holder could not reach the store.
//
// Any thread.
class SharedLocks {
public:
    static constexpr std::chrono::milliseconds life{5000};

    // Runs a script on one key with the time, as lua_now reads it, in front of the arguments. May
    // raise anything.
    using Run = std::function<store::Reply(const store::Script& script, const std::string& key,
                                           std::vector<std::string> arguments)>;

    explicit SharedLocks(Run run);
    // Waits for what the thread has begun.
    ~SharedLocks();
    SharedLocks(const SharedLocks&) = delete;
    SharedLocks& operator=(const SharedLocks&) = delete;

    // The lock has been taken: it is extended from now on.
    void hold(const std::string& key, const std::string& token);
    // Its holder has released it, or lost it.
    void let_go(const std::string& token);
    // Releases it now, or as below. Raises nothing.
    void release(const std::string& key, const std::string& token);
    // It is released as soon as the store can be reached, if it has been taken at all: a command
    // may arrive whose answer nobody waits for any more. Beyond a thousand such locks or so the
    // later ones end by themselves.
    void release_later(const std::string& key, const std::string& token);

private:
    using Clock = std::chrono::steady_clock;
    struct Held {
        std::string key;
        Clock::time_point since;
    };
    struct Left {
        std::string key;
        std::string token;
        Clock::time_point until;  // the store has answered, and knows of no such lock; before: max
    };

    void work();
    void extend_held(std::unique_lock<std::mutex>& guard);
    void release_left(std::unique_lock<std::mutex>& guard);

    const Run run_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::map<std::string, Held, std::less<>> held_;  // by token
    std::vector<Left> left_;
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

private:
    std::chrono::milliseconds pause_{1};
};

}  // namespace orvo::web
