#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace orvo::web {

// The workers that connections are given to, in the order in which they came. Behind the seam of
// http_server.cpp.
class WorkerPool : public httplib::TaskQueue {
public:
    explicit WorkerPool(int workers) {
        for (int i = 0; i < workers; ++i) threads_.emplace_back([this] { work(); });
    }

    void enqueue(std::function<void()> job) override {
        {
            const std::lock_guard guard(lock_);
            jobs_.push_back(std::move(job));
            waiting_ = jobs_.size();
        }
        changed_.notify_one();
    }
    void shutdown() override {
        {
            const std::lock_guard guard(lock_);
            is_ending_ = true;
        }
        changed_.notify_all();
        for (std::thread& thread : threads_) thread.join();
    }

    // How many connections no worker has taken yet.
    std::size_t waiting() const { return waiting_; }

private:
    void work() {
        while (true) {
            std::function<void()> job;
            {
                std::unique_lock guard(lock_);
                changed_.wait(guard, [&] { return !jobs_.empty() || is_ending_; });
                if (jobs_.empty()) return;
                job = std::move(jobs_.front());
                jobs_.pop_front();
                waiting_ = jobs_.size();
            }
            job();
        }
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> jobs_;
    std::atomic<std::size_t> waiting_ = 0;
    bool is_ending_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace orvo::web
