#pragma once

// What the machines of a site tell each other through the shared store.

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "suite/store/redis.h"

namespace orvo::store {

// Listens to one channel, on a thread and a connection of its own, until its end.
//
// Messages that are published while it does not listen are lost: whoever keeps copies by them drops
// all of them at `on_gap`, which is called when it stops listening, and again when it listens anew
// (a copy may have been made in between). Not listening is noticed at once where the connection
// breaks, otherwise within a second and Settings::time_limit. It is tried again every fifth of a
// second.
//
// Both functions are called on that thread, one at a time; they neither raise nor wait for long,
// and may use Redis. The first call is on_gap, when it listens for the first time. The destructor
// waits for the one that is running.
class Subscription {
public:
    Subscription(std::shared_ptr<Redis> redis, std::string channel,
                 std::function<void(std::string_view message)> on_message,
                 std::function<void()> on_gap);
    ~Subscription();
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    // Whether it listens, as far as it knows: not before on_gap was called for its beginning, nor
    // from when on_gap is called for its end. Any thread.
    bool is_listening() const;

private:
    class Listener;
    const std::unique_ptr<Listener> listener_;
};

}  // namespace orvo::store
