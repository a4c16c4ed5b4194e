#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace orvo {

// A thread that works in rounds while there is something to do. It is there from a call of `wake`
// until a round says that there is no next one; as long, the module is not unloaded. The destructor
// waits for the round that is being done. Thread-safe.
class Prober {
public:
    // A round, which returns when the next one is due, by the steady clock; nothing: there is none.
    using Clock = std::chrono::steady_clock;
    using Round = std::function<std::optional<Clock::time_point>()>;

    explicit Prober(Round round) : round_(std::move(round)) {}
    Prober(const Prober&) = delete;
    ~Prober();

    // A round is due now. Where the system gives no thread, nothing is done until the next call.
    void wake();

private:
    void work();

    const Round round_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool is_due_ = false;
    bool is_running_ = false;
    bool is_ending_ = false;
    std::thread thread_;
};

}  // namespace orvo
