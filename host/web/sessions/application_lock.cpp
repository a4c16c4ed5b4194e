#include "host/web/sessions/application_lock.h"

#include "platform/values/failure.h"

namespace orvo::web {

std::unique_lock<std::mutex> ApplicationLock::pass(const Holder& holder) {
    std::unique_lock guard(lock_);
    const auto is_mine_or_free = [&] { return !owner_ || owner_ == &holder; };
    if (!released_.wait_for(guard, holder.patience(), is_mine_or_free)) give_up();
    return guard;
}

std::unique_lock<std::mutex> ApplicationLock::take(const Holder& holder) {
    auto guard = pass(holder);
    owner_ = &holder;
    return guard;
}

bool ApplicationLock::release(const Holder& holder) {
    {
        const std::lock_guard guard(lock_);
        if (owner_ != &holder) return false;
        owner_ = nullptr;
    }
    released_.notify_all();
    return true;
}

void ApplicationLock::give_up() {
    throw Failure(runtime_error::permission_denied, {},
                  u"Another page keeps the application locked");
}

}  // namespace orvo::web
