#include "host/web/server/worker_pool.h"

#include <chrono>
#include <utility>

namespace orvo::web {
namespace {

// Among many that wait a moment each, a place is free again soon; where none gets free, those who
// wait for one keep their workers from others no longer than this.
constexpr std::chrono::milliseconds patience_for_place{500};

}  // namespace

WorkerPool::WorkerPool(int workers, int most_directory_jobs, std::size_t most_waiting)
    : most_directory_jobs_(most_directory_jobs),
      most_waiting_(most_waiting),
      most_waiting_for_place_(workers - most_directory_jobs - 1) {
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

bool WorkerPool::try_add(Job job, bool is_directory_job) {
    {
        const std::lock_guard guard(lock_);
        Queue& queue = is_directory_job ? directory_jobs_ : other_jobs_;
        if (queue.size() >= most_waiting_) return false;
        queue.push_back({++added_, std::move(job)});
    }
    changed_.notify_one();
    return true;
}

bool WorkerPool::try_wait() {
    std::unique_lock guard(lock_);
    if (*is_directory_job_) return true;
    const auto has_place = [&] { return running_directory_jobs_ < most_directory_jobs_; };
    if (!has_place()) {
        if (waiting_for_place_ >= most_waiting_for_place_) return false;
        ++waiting_for_place_;
        place_freed_.wait_for(guard, patience_for_place, has_place);
        --waiting_for_place_;
        if (!has_place()) return false;
    }
    ++running_directory_jobs_;
    return *is_directory_job_ = true;
}

WorkerPool::Queue* WorkerPool::next() {
    const bool has_directory_job =
        !directory_jobs_.empty() && running_directory_jobs_ < most_directory_jobs_;
    if (other_jobs_.empty()) return has_directory_job ? &directory_jobs_ : nullptr;
    if (has_directory_job && directory_jobs_.front().number < other_jobs_.front().number)
        return &directory_jobs_;
    return &other_jobs_;
}

thread_local bool* WorkerPool::is_directory_job_ = nullptr;

void WorkerPool::work() {
    bool is_directory_job = false;
    is_directory_job_ = &is_directory_job;
    std::unique_lock guard(lock_);
    while (true) {
        Queue* queue = next();
        if (!queue) {
            if (is_ending_ && directory_jobs_.empty()) return;
            changed_.wait(guard);
            continue;
        }
        is_directory_job = queue == &directory_jobs_;
        Job job = std::move(queue->front().job);
        queue->pop_front();
        if (is_directory_job) ++running_directory_jobs_;
        guard.unlock();
        job();
        job = nullptr;
        guard.lock();
        if (!is_directory_job) continue;
        --running_directory_jobs_;
        place_freed_.notify_one();
        // A worker may sleep although directory jobs wait: there was no place for one.
        if (is_ending_)
            changed_.notify_all();
        else
            changed_.notify_one();
    }
}

}  // namespace orvo::web
