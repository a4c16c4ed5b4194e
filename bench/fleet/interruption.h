#pragma once

#include <chrono>
#include <stdexcept>

namespace orvo::fleet {

using Clock = std::chrono::steady_clock;

// Somebody has asked the program to end (SIGINT, SIGTERM).
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

// From now on these signals end what waits here, and nothing else.
void catch_interruptions();
// Both raise Interrupted. The main thread's.
void wait_until(Clock::time_point end);
[[noreturn]] void wait_for_interruption();

}  // namespace orvo::fleet
