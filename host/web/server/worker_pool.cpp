#include "host/web/server/worker_pool.h"

#include <chrono>
#include <utility>

namespace orvo::web {
namespace {

// Among many that wait a moment each, a place is free again soon; where none gets free, those who
// wait for one keep their workers from others no longer than this.
constexpr std::chrono::milliseconds patience_for_place{500};

}  // namespace

WorkerPool::WorkerPool(int workers, int most_limited, std::size_t most_waiting)
    : most_limited_(most_limited), most_waiting_(most_waiting) {
    for (int i = 0; i < workers; ++i) threads_.emplace_back([this] { work(); });
}

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard guard(lock_);
        is_ending_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

bool WorkerPool::try_add(Job job, bool is_limited) {
    {
        const std::lock_guard guard(lock_);
        Queue& queue = is_limited ? limited_ : ordinary_;
        if (queue.size() >= most_waiting_) return false;
        queue.push_back({++added_, std::move(job)});
    }
    changed_.notify_one();
    return true;
}

bool WorkerPool::try_limit_this() {
    std::unique_lock guard(lock_);
    if (*is_this_limited_) return true;
    if (!place_freed_.wait_for(guard, patience_for_place,
                               [&] { return running_limited_ < most_limited_; }))
        return false;
    ++running_limited_;
    return *is_this_limited_ = true;
}

WorkerPool::Queue* WorkerPool::next() {
    const bool has_limited = !limited_.empty() && running_limited_ < most_limited_;
    if (ordinary_.empty()) return has_limited ? &limited_ : nullptr;
    if (has_limited && limited_.front().number < ordinary_.front().number) return &limited_;
    return &ordinary_;
}

thread_local bool* WorkerPool::is_this_limited_ = nullptr;

void WorkerPool::work() {
    bool is_limited = false;
    is_this_limited_ = &is_limited;
    std::unique_lock guard(lock_);
    while (true) {
        Queue* queue = next();
        if (!queue) {
            if (is_ending_ && limited_.empty()) return;
            changed_.wait(guard);
            continue;
        }
        is_limited = queue == &limited_;
        Job job = std::move(queue->front().job);
        queue->pop_front();
        if (is_limited) ++running_limited_;
        guard.unlock();
        job();
        job = nullptr;
        guard.lock();
        if (!is_limited) continue;
        --running_limited_;
        place_freed_.notify_one();
        // Somebody may have slept only because he was not to take one of these.
        if (is_ending_)
            changed_.notify_all();
        else
            changed_.notify_one();
    }
}

}  // namespace orvo::web
