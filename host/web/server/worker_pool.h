#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace orvo::web {

// Threads that carry out jobs in the order in which they came. Directory jobs, those that wait for
// the directory, are carried out by a share of the threads at most, and together with those that
// may turn out to be such they leave one thread to the others. Any thread.
class WorkerPool {
public:
    using Job = std::function<void()>;  // must not raise
    enum class Kind { other, undecided, directory };

    // most_waiting: jobs of each kind that no worker has taken yet.
    WorkerPool(int workers, int most_directory_jobs, std::size_t most_waiting);
    // Carries out what waits, and waits for it.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    // False where too many wait already: the job is not carried out.
    bool try_add(Job job, Kind kind = Kind::other);
    // Before a job waits for the directory: makes it a directory job until it ends. Where as many
    // run as may, it waits until one of them ends, ahead of jobs that no worker has taken yet.
    // False: none of them has ended for half a second, or no thread would be left to the others,
    // and the job must not wait for the directory. On a worker's thread only, with no lock held.
    bool try_wait();

    // By kind. Any thread.
    struct Counts {
        std::size_t workers;
        std::array<std::size_t, 3> waiting;  // jobs that no worker has taken yet
        std::array<int, 3> running;
        int waiting_for_place;  // of those that run: for a place among directory jobs
        std::array<std::uint64_t, 3> refused;
        std::uint64_t turned_away;  // that were not to wait for the directory
    };
    Counts counts() const;

private:
    struct Waiting {
        std::uint64_t number;  // in the order of arrival
        Job job;
    };
    static constexpr std::size_t kinds = 3;

    void work();
    // Of the job that is to be taken next; none where none may be carried out now.
    std::optional<Kind> next() const;
    bool may_run(Kind kind) const;
    // Of the job that this thread carries out.
    void change_kind(Kind kind);
    bool has_place() const { return running(Kind::directory) < most_directory_jobs_; }
    std::deque<Waiting>& queue(Kind kind) { return queues_[static_cast<std::size_t>(kind)]; }
    const std::deque<Waiting>& queue(Kind kind) const {
        return queues_[static_cast<std::size_t>(kind)];
    }
    int& running(Kind kind) { return running_[static_cast<std::size_t>(kind)]; }
    int running(Kind kind) const { return running_[static_cast<std::size_t>(kind)]; }

    const int most_directory_jobs_;
    const int most_in_doubt_;  // directory and undecided jobs that run
    const std::size_t most_waiting_;
    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::condition_variable place_freed_;  // among the directory jobs
    std::array<std::deque<Waiting>, kinds> queues_;
    std::array<int, kinds> running_{};
    std::array<std::uint64_t, kinds> refused_{};
    std::uint64_t turned_away_ = 0;
    int waiting_for_place_ = 0;
    std::uint64_t freed_places_ = 0;
    static thread_local Kind* kind_;  // of the job that a worker's thread carries out
    std::uint64_t added_ = 0;
    bool is_ending_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace orvo::web
