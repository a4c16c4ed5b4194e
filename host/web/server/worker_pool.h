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

// Threads that carry out jobs in the order in which they came. Directory jobs, those that may wait
// for the directory, are carried out by a share of the threads at most. Any thread.
class WorkerPool {
public:
    using Job = std::function<void()>;  // must not raise

    // most_waiting: jobs of either kind that no worker has taken yet.
    WorkerPool(int workers, int most_directory_jobs, std::size_t most_waiting);
    // Carries out what waits, and waits for it.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    // False where too many wait already: the job is not carried out.
    bool try_add(Job job, bool is_directory_job = false);
    // Before a job waits for the directory: makes it a directory job until it ends. Where as many
    // run as may, it waits up to half a second for one of them to end, unless that would take the
    // last worker that is left to the other jobs; false: none has, and the job must not wait for
    // the directory. On a worker's thread only, with no lock held.
    bool try_wait();

private:
    struct Waiting {
        std::uint64_t number;  // in the order of arrival
        Job job;
    };
    using Queue = std::deque<Waiting>;

    void work();
    // The queue whose first job is next; null where none may be carried out now.
    Queue* next();

    const int most_directory_jobs_;
    const std::size_t most_waiting_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::condition_variable place_freed_;  // among the directory jobs
    Queue other_jobs_;
    Queue directory_jobs_;
    int running_directory_jobs_ = 0;
    const int most_waiting_for_place_;
    int waiting_for_place_ = 0;
    static thread_local bool* is_directory_job_;  // on a worker's thread
    std::uint64_t added_ = 0;
    bool is_ending_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace orvo::web
