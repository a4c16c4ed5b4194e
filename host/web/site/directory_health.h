#pragma once

// Whether the directory can be reached, for the health address.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace orvo::web {

// Raises what stands in the way of binding the user container with the service account.
void reach_directory();

// Asks on a thread of its own, one question at a time, and answers what it learned for two seconds
// again. Any thread.
class DirectoryHealth {
public:
    explicit DirectoryHealth(std::function<void()> reach = reach_directory,
                             std::chrono::milliseconds patience = std::chrono::seconds(3));
    // Waits for a question that is being asked.
    ~DirectoryHealth();
    DirectoryHealth(const DirectoryHealth&) = delete;
    DirectoryHealth& operator=(const DirectoryHealth&) = delete;

    // Empty where the directory was reached, otherwise why not. Takes no longer than the patience;
    // who asks while others wait in vain does not wait anew.
    std::string trouble();

private:
    using Clock = std::chrono::steady_clock;
    void serve();

    const std::function<void()> reach_;
    const std::chrono::milliseconds patience_;
    std::mutex lock_;
    std::condition_variable changed_;
    bool is_wanted_ = false;
    bool is_ending_ = false;
    std::string trouble_;
    Clock::time_point fresh_until_{};
    std::uint64_t answers_ = 0;
    std::thread thread_;
};

}  // namespace orvo::web
