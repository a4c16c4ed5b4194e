#include "suite/directory/embedded/store/write_queue.h"

namespace orvo::directory::embedded {

bool WriteQueue::acquire(Deadline deadline) {
    std::unique_lock lock(mutex_);
    const auto self = waiting_.emplace(waiting_.end());
    const bool is_turn =
        self->wait_until(lock, deadline, [&] { return !is_taken_ && self == waiting_.begin(); });
    waiting_.erase(self);
    if (is_turn) is_taken_ = true;
    return is_turn;
}

void WriteQueue::release() {
    const std::lock_guard lock(mutex_);
    is_taken_ = false;
    if (!waiting_.empty()) waiting_.front().notify_one();
}

std::size_t WriteQueue::waiting() {
    const std::lock_guard lock(mutex_);
    return waiting_.size();
}

}  // namespace orvo::directory::embedded
