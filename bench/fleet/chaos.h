#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bench/fleet/faults.h"
#include "bench/fleet/ledger.h"
#include "bench/fleet/users.h"

namespace orvo::fleet {

struct ChaosOptions {
    std::size_t browsers = 64;
    std::chrono::seconds duration{300};  // of all faults together, and of the time without any
    std::vector<Fault> faults = every_fault();
};

// The time of one fault: its own and what users need to recover from it. The first one has none.
struct Slot {
    std::string name;
    std::optional<Part> part;
    Clock::time_point begin;  // of the fault
    Clock::time_point healed;
    Clock::time_point end;
};

struct ChaosOutcome {
    std::vector<Slot> slots;
    std::vector<Ledger> ledgers;           // of each browser
    std::vector<std::string> lost_writes;  // acknowledged, and in a store that does not have them
    bool has_settled = false;              // both directory servers have the same
};

// Raises what ends it before its time.
ChaosOutcome run(Fleet& fleet, const ChaosOptions& options);

}  // namespace orvo::fleet
