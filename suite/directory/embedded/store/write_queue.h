#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>

namespace orvo::directory::embedded {

// The writers of one process, one after another in the order of their coming. Those of other
// processes are told apart by the file's own lock alone. Thread-safe.
class WriteQueue {
public:
    using Deadline = std::chrono::steady_clock::time_point;

    // Whether it is this thread's turn before the deadline; it then ends with release().
    bool acquire(Deadline deadline);
    void release();
    // How many wait for theirs.
    std::size_t waiting();

private:
    std::mutex mutex_;
    bool is_taken_ = false;
    std::list<std::condition_variable> waiting_;  // the first one is next
};

}  // namespace orvo::directory::embedded
