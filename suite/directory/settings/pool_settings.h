#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include "platform/values/described_setting.h"
#include "platform/values/variant.h"
#include "suite/directory/settings/limits.h"

namespace orvo::directory {

// How the process keeps its connections, and when it turns to another server.
struct PoolSettings {
    // Connections of one user (or of the password checks of one container) at the same time, at
    // most. 0: any number, and none is kept longer than an object that works with the same
    // credentials.
    std::size_t maximum_size = 16;
    // Idle connections of all users together, at most; of more, the least recently used are closed.
    // Many users who come once each would otherwise leave a connection each.
    std::size_t maximum_idle = 64;
    // How long an operation waits for a connection where there are `maximum_size` in use.
    std::chrono::milliseconds wait{5000};
    // How long a connection is idle, and lives, before it is closed.
    std::chrono::seconds idle{30};
    std::chrono::seconds age{300};
    // How long credentials that the server accepted are good for another Bind or Connect without
    // asking it, and those that it refused are refused without asking.
    std::chrono::seconds recheck{5};
    // How long a preferred server that was down must have been up again before it is used.
    std::chrono::seconds failback_after{10};
    // How long after a write an entry is read from the server that took the write.
    std::chrono::seconds replica_lag{5};
    Limits limits;
};

// The settings changed by what InitializeConnectionPool is given; those that are not named stay.
// Raises what read_numbers raises.
PoolSettings changed(PoolSettings settings, const Variant& names, const Variant& values);

// Their names, units, ranges and defaults.
std::vector<DescribedSetting> described_pool_settings();

}  // namespace orvo::directory
