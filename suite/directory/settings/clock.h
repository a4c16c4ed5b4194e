#pragma once

#include <chrono>

namespace orvo::directory {

// The time by which connections, servers and what was read grow old. Thread-safe.
class Clock {
public:
    using time_point = std::chrono::steady_clock::time_point;

    virtual time_point now() const = 0;

    // The system's; lives as long as the process.
    static const Clock& steady() {
        static const struct Steady final : Clock {
            time_point now() const override { return std::chrono::steady_clock::now(); }
        } made;
        return made;
    }

protected:
    ~Clock() = default;
};

}  // namespace orvo::directory
