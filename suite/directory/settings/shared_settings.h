#pragma once

#include <mutex>

#include "suite/directory/settings/pool_settings.h"

namespace orvo::directory {

// The settings of the pool as they are now. Thread-safe; takes no other lock.
class SharedSettings {
public:
    PoolSettings get() const {
        const std::lock_guard lock(mutex_);
        return settings_;
    }
    // All of what is given, or nothing of it; see `changed`.
    void change(const Variant& names, const Variant& values) {
        const std::lock_guard lock(mutex_);
        settings_ = changed(settings_, names, values);
    }

private:
    mutable std::mutex mutex_;
    PoolSettings settings_;
};

}  // namespace orvo::directory
