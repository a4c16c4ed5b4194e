#pragma once

#include <condition_variable>
#include <mutex>

#include "host/web/sessions/application_state.h"

namespace orvo::web {

// Which request of this process has the application locked. Any thread.
class ApplicationLock {
public:
    using Holder = ApplicationState::Holder;

    // Both wait until no other request has it, and raise 70 where that takes longer than the
    // holder's patience. The guard of what the application holds is locked when they return.
    std::unique_lock<std::mutex> take(const Holder& holder);
    std::unique_lock<std::mutex> pass(const Holder& holder);
    // False where the holder does not have it.
    bool release(const Holder& holder);
    bool is_of(const Holder& holder) const { return owner_ == &holder; }  // under the guard

    std::unique_lock<std::mutex> guard() const { return std::unique_lock(lock_); }
    [[noreturn]] static void give_up();

private:
    mutable std::mutex lock_;
    std::condition_variable released_;
    const Holder* owner_ = nullptr;
};

}  // namespace orvo::web
