#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <thread>
#include <vector>

namespace orvo::fleet {

// Threads that work until they are told to end, each with a number of its own.
class Crowd {
public:
    using Work = std::function<void(std::size_t number, const std::atomic<bool>& is_over)>;

    Crowd(std::size_t size, const Work& work) : stopped_by_(size) {
        for (std::size_t i = 0; i < size; ++i)
            threads_.emplace_back([this, i, work] {
                try {
                    work(i, is_over_);
                } catch (...) {
                    stopped_by_[i] = std::current_exception();
                }
            });
    }
    ~Crowd() { join(); }
    Crowd(const Crowd&) = delete;
    Crowd& operator=(const Crowd&) = delete;

    // Waits for all, and raises what one of them has raised.
    void end() {
        join();
        for (const auto& reason : stopped_by_)
            if (reason) std::rethrow_exception(reason);
    }

private:
    void join() {
        is_over_ = true;
        for (std::thread& thread : threads_)
            if (thread.joinable()) thread.join();
    }

    std::atomic<bool> is_over_ = false;
    std::vector<std::exception_ptr> stopped_by_;
    std::vector<std::thread> threads_;
};

}  // namespace orvo::fleet
