#include "suite/throttle/process_throttle.h"

#include "suite/throttle/shared_counters.h"

namespace orvo::throttle {

ProcessThrottle& ProcessThrottle::of_process() {
    static ProcessThrottle throttle;
    return throttle;
}

Counters& ProcessThrottle::counters(const Settings& settings) {
    gate(settings);
    return shared_ ? *shared_ : memory_;
}

Gate& ProcessThrottle::gate(const Settings& settings) {
    memory_.set_most(settings.most_counted);
    const std::lock_guard lock(mutex_);
    if (!gate_) {
        shared_ = shared_counters(memory_);
        gate_.emplace(shared_ ? *shared_ : memory_);
    }
    return *gate_;
}

}  // namespace orvo::throttle
