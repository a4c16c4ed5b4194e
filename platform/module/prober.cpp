#include "platform/module/prober.h"

#include <system_error>

#include "platform/interfaces/face.h"

namespace orvo {

Prober::~Prober() {
    {
        const std::lock_guard lock(mutex_);
        is_ending_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void Prober::wake() {
    const std::lock_guard lock(mutex_);
    is_due_ = true;
    changed_.notify_all();
    if (is_running_ || is_ending_) return;
    // One that has done its last round only has to end.
    if (thread_.joinable()) thread_.join();
    try {
        thread_ = std::thread([this] { work(); });
    } catch (const std::system_error&) {
        return;
    }
    ++detail::live_objects();
    is_running_ = true;
}

void Prober::work() {
    std::unique_lock lock(mutex_);
    std::optional<Clock::time_point> next = Clock::time_point::min();
    while (next && !is_ending_) {
        is_due_ = false;
        lock.unlock();
        next = round_();
        lock.lock();
        if (is_due_) next = Clock::time_point::min();
        if (next) changed_.wait_until(lock, *next, [&] { return is_due_ || is_ending_; });
    }
    is_running_ = false;
    --detail::live_objects();
}

}  // namespace orvo
