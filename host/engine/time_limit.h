#pragma once

#include <chrono>
#include <optional>

namespace orvo::script {

// Until when a script may run. Belongs to the thread of its engine.
class TimeLimit {
public:
    // From now on; is_over() begins anew.
    void set(std::chrono::milliseconds limit);
    void clear();

    std::chrono::milliseconds limit() const { return limit_; }
    // Looks at the clock. Once the time is over it stays so until it is set or cleared.
    bool is_over();
    // Whether is_over() has answered so.
    bool was_over() const { return is_over_; }
    // When is_over() has looked at the clock last; it does so only while there is a limit.
    std::chrono::steady_clock::time_point last_look() const { return last_look_; }

private:
    std::chrono::milliseconds limit_{0};
    std::optional<std::chrono::steady_clock::time_point> end_;
    std::chrono::steady_clock::time_point last_look_;
    bool is_over_ = false;
};

}  // namespace orvo::script
