#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/fleet/fleet.h"

namespace orvo::fleet {

// The part of the fleet that a fault is of; what users may notice of it differs.
enum class Part { node, directory, store, balancer, all_nodes };

// One after the other, so that never two are there at once.
struct Fault {
    std::string name;
    Part part;
    std::function<void(Fleet&)> inject;  // returns when it is there
    std::function<void(Fleet&)> heal;    // returns when the part works again
    // It is over when inject has returned: nobody waits before healing it.
    bool is_brief = false;
};

std::vector<Fault> every_fault();
// One of each kind of part, and the rolling restart.
std::vector<Fault> brief_faults();

}  // namespace orvo::fleet
