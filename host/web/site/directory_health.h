#pragma once

// Whether the directory can be reached, for the health address.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace orvo::web {

// Raises what stands in the way of binding the user container with the service account. Where a
// server fails just then, another one of the list is asked.
void reach_directory();

// Asks on a thread of its own, one question at a time, and answers what it learned for `fresh_for`
// again. Later it asks anew, and what was known holds until there is an answer: whoever looks every
// half a second does not take a server that fails for one that nobody can do without. Any thread.
class DirectoryHealth {
public:
    explicit DirectoryHealth(std::function<void()> reach = reach_directory,
                             std::chrono::milliseconds patience = std::chrono::seconds(4),
                             std::chrono::milliseconds fresh_for = std::chrono::seconds(2));
    // Waits for a question that is being asked.
    ~DirectoryHealth();
    DirectoryHealth(const DirectoryHealth&) = delete;
    DirectoryHealth& operator=(const DirectoryHealth&) = delete;

    // Empty where the directory was reached, otherwise why not. A question without an answer is
    // trouble after the patience, which is longer than an answer of one server is waited for
    // (AnswerLimit): then another one may have answered. As long as nothing is known calls wait for
    // it; later one that asks anew waits a moment, and the others not at all.
    std::string trouble();

private:
    using Clock = std::chrono::steady_clock;
    void serve();

    const std::function<void()> reach_;
    const std::chrono::milliseconds patience_;
    const std::chrono::milliseconds fresh_for_;
    std::mutex lock_;
    std::condition_variable changed_;
    bool is_wanted_ = false;  // from a question until its answer
    bool is_ending_ = false;
    std::string trouble_;
    Clock::time_point fresh_until_{};
    Clock::time_point asked_{};
    std::uint64_t answers_ = 0;
    std::thread thread_;
};

}  // namespace orvo::web
