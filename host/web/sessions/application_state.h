#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "host/web/sessions/named_values.h"

namespace orvo::web {

// What all pages of the site share. Any thread; single reads and writes are atomic.
class ApplicationState {
public:
    // Stands for one request.
    class Holder;

    NamedValues snapshot() const;
    Variant get(TextView name) const;

private:
    friend class Holder;
    mutable std::mutex lock_;
    std::condition_variable unlocked_;
    NamedValues values_;
    const Holder* owner_ = nullptr;
};

// One request's way to the application. While a request holds the application locked, the others
// read, and wait when they write. A lock goes with the request.
class ApplicationState::Holder {
public:
    // patience: how long to wait for another request's lock; then 70 (permission denied) is raised.
    Holder(ApplicationState& state, std::chrono::milliseconds patience)
        : state_(state), patience_(patience) {}
    ~Holder() { unlock(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    void lock();
    void unlock();
    Variant get(TextView name) const { return state_.get(name); }
    NamedValues snapshot() const { return state_.snapshot(); }
    // Raise 5 for a value that cannot be kept; `put` takes the default value of such an object.
    void put(TextView name, const Variant& value);
    void set(TextView name, const Variant& value);
    void remove(TextView name);
    void remove_all();

private:
    template <class Change>
    void change(Change change);
    void wait(std::unique_lock<std::mutex>& guard);

    ApplicationState& state_;
    const std::chrono::milliseconds patience_;
};

}  // namespace orvo::web
