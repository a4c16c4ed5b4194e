#pragma once

#include <atomic>

#include "suite/directory/settings/clock.h"

namespace orvo::directory::ldap {

// Stands still until it is told to go on. Thread-safe.
class ManualClock final : public Clock {
public:
    time_point now() const override { return now_.load(); }
    void advance(std::chrono::milliseconds time) { now_.store(now_.load() + time); }

private:
    std::atomic<time_point> now_{std::chrono::steady_clock::now()};
};

}  // namespace orvo::directory::ldap
