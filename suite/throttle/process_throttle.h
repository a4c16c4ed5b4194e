#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "suite/throttle/gate.h"
#include "suite/throttle/memory_counters.h"

namespace orvo::throttle {

// What all objects of the process share. Where it counts is settled when it is first asked. Both
// raise what is wrong with the settings of the site's store. Any thread.
class ProcessThrottle {
public:
    static ProcessThrottle& of_process();

    Counters& counters(const Settings& settings);
    Gate& gate(const Settings& settings);

private:
    std::mutex mutex_;
    MemoryCounters memory_;
    std::unique_ptr<Counters> shared_;
    std::optional<Gate> gate_;  // made once it is settled
};

}  // namespace orvo::throttle
