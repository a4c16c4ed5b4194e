#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orvo::web {

// Threads that carry out jobs in the order in which they came. Jobs of one kind, those that may
// wait for something outside, are carried out by a share of the threads at most. Any thread.
class WorkerPool {
public:
    using Job = std::function<void()>;  // must not raise

    // most_waiting: jobs of either kind that no worker has taken yet.
    WorkerPool(int workers, int most_limited, std::size_t most_waiting);
    // Carries out what waits, and waits for it.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    // False where too many wait already: the job is not carried out.
    bool try_add(Job job, bool is_limited = false);
    // The job that calls it is one of those that are limited, as it turns out, and counts as one
    // until it ends. Waits half a second where as many run as may, and answers false where none of
    // them has ended then: it should not go on to what they wait for. On a worker's thread only.
    bool try_limit_this();

private:
    struct Waiting {
        std::uint64_t number;  // in the order of arrival
        Job job;
    };
    using Queue = std::deque<Waiting>;

    void work();
    // The queue whose first job is next; null where none may be carried out now.
    Queue* next();

    const int most_limited_;
    const std::size_t most_waiting_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::condition_variable place_freed_;  // among the limited
    Queue ordinary_;
    Queue limited_;
    int running_limited_ = 0;
    static thread_local bool* is_this_limited_;  // on a worker's thread
    std::uint64_t added_ = 0;
    bool is_ending_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace orvo::web
