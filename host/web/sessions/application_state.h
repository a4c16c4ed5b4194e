#pragma once

#include <chrono>

#include "host/web/sessions/named_values.h"
#include "host/web/sessions/store_away.h"

namespace orvo::web {

// What all pages of the site share. Any thread; single reads and writes are atomic. Where it is
// shared by several machines, everything but put_own and unlock raises StoreAway while their store
// cannot be reached.
class ApplicationState {
public:
    // Stands for one request.
    class Holder;

    virtual ~ApplicationState() = default;
    // Who sees the values.
    virtual Reach reach() const = 0;
    virtual NamedValues snapshot() = 0;
    virtual Variant get(TextView name) = 0;
    // A value of the host's own, an object say, which stays in this process.
    virtual void put_own(TextView name, const Variant& value) = 0;

private:
    // Raise as the Holder's.
    virtual void lock(const Holder& holder) = 0;
    virtual void unlock(const Holder& holder) = 0;
    virtual void put(const Holder& holder, TextView name, const Variant& value) = 0;
    virtual void remove(const Holder& holder, TextView name) = 0;
    virtual void remove_all(const Holder& holder) = 0;
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

    std::chrono::milliseconds patience() const { return patience_; }
    void lock() { state_.lock(*this); }
    // Raises nothing.
    void unlock() { state_.unlock(*this); }
    Variant get(TextView name) const { return state_.get(name); }
    NamedValues snapshot() const { return state_.snapshot(); }
    // Raise 5 for a value that cannot be kept; `put` takes the default value of such an object.
    void put(TextView name, const Variant& value) {
        set(name, keepable(value, u"Application", name, state_.reach()));
    }
    void set(TextView name, const Variant& value) {
        require_keepable(value, u"Application", name, state_.reach());
        state_.put(*this, name, value);
    }
    void remove(TextView name) { state_.remove(*this, name); }
    void remove_all() { state_.remove_all(*this); }

private:
    ApplicationState& state_;
    const std::chrono::milliseconds patience_;
};

}  // namespace orvo::web
