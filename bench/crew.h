#pragma once

// Threads that do the same thing at the same time, and how long that takes.

#include <barrier>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace orvo {

// So many threads, each with a worker that it has made for itself, so that what belongs to a thread
// stays there. They last as long as the crew.
template <class Worker>
class Crew {
public:
    explicit Crew(int size) : meeting_(size + 1) {
        for (int number = 0; number < size; ++number)
            threads_.emplace_back([this] {
                Worker worker;
                for (;;) {
                    meeting_.arrive_and_wait();
                    if (!task_) return;
                    for (int round = 0; round < rounds_; ++round) task_(worker);
                    meeting_.arrive_and_wait();
                }
            });
    }
    ~Crew() {
        task_ = nullptr;
        meeting_.arrive_and_wait();
        for (std::thread& thread : threads_) thread.join();
    }
    Crew(const Crew&) = delete;

    // Every thread does the task so many times; the seconds until all are done.
    double run(int rounds, std::function<void(Worker&)> task) {
        rounds_ = rounds;
        task_ = std::move(task);
        const auto begin = std::chrono::steady_clock::now();
        meeting_.arrive_and_wait();
        meeting_.arrive_and_wait();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    }

private:
    std::barrier<> meeting_;
    std::vector<std::thread> threads_;
    std::function<void(Worker&)> task_;
    int rounds_ = 0;
};

}  // namespace orvo
