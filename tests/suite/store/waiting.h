#pragma once

#include <chrono>
#include <thread>

namespace orvo::store {

// Looks again and again until `holds`, for so many seconds at most; whether it does.
template <class Holds>
bool wait_until(Holds holds, int seconds = 10) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    for (; Clock::now() < end; std::this_thread::sleep_for(std::chrono::milliseconds(2)))
        if (holds()) return true;
    return false;
}

}  // namespace orvo::store
