#pragma once

#include <ostream>
#include <vector>

#include "bench/failover/ledger.h"
#include "bench/failover/shop_pair.h"
#include "bench/failover/verdict.h"

namespace orvo::failover {

// What came of one fault.
struct Outcome {
    Fault fault;
    Clock::time_point start;
    Window window;  // of the fault
    std::vector<Ledger> ledgers;
    Verdict verdict;
    Sightings::Return back;
    bool has_settled;
};

void print(const std::vector<Outcome>& outcomes, std::ostream& out);

}  // namespace orvo::failover
