#include "host/web/sessions/application_state.h"

#include "platform/values/failure.h"

namespace orvo::web {
namespace {

constexpr std::int32_t permission_denied = 70;

}  // namespace

NamedValues ApplicationState::snapshot() const {
    const std::lock_guard guard(lock_);
    return values_;
}

Variant ApplicationState::get(TextView name) const {
    const std::lock_guard guard(lock_);
    return values_.get(name);
}

void ApplicationState::Holder::wait(std::unique_lock<std::mutex>& guard) {
    const auto is_mine_or_free = [&] { return !state_.owner_ || state_.owner_ == this; };
    if (!state_.unlocked_.wait_for(guard, patience_, is_mine_or_free))
        throw Failure(permission_denied, {}, u"Another page keeps the application locked");
}

void ApplicationState::Holder::lock() {
    std::unique_lock guard(state_.lock_);
    wait(guard);
    state_.owner_ = this;
}

void ApplicationState::Holder::unlock() {
    {
        const std::lock_guard guard(state_.lock_);
        if (state_.owner_ != this) return;
        state_.owner_ = nullptr;
    }
    state_.unlocked_.notify_all();
}

template <class Change>
void ApplicationState::Holder::change(Change change) {
    std::unique_lock guard(state_.lock_);
    wait(guard);
    change(state_.values_);
}

void ApplicationState::Holder::put(TextView name, const Variant& value) {
    set(name, keepable(value, u"Application", name));
}

void ApplicationState::Holder::set(TextView name, const Variant& value) {
    require_keepable(value, u"Application", name);
    change([&](NamedValues& values) { values.put(name, value); });
}

void ApplicationState::Holder::remove(TextView name) {
    change([&](NamedValues& values) { values.remove(name); });
}

void ApplicationState::Holder::remove_all() {
    change([](NamedValues& values) { values.remove_all(); });
}

}  // namespace orvo::web
