#pragma once

// What the ledgers of all threads, the proxies and the two stores say together.

#include <string>
#include <vector>

#include "bench/failover/ledger.h"
#include "bench/failover/shop_pair.h"

namespace orvo::failover {

struct Window {
    Clock::time_point begin;
    Clock::time_point end;
};

struct Verdict {
    // Must be 0.
    std::vector<std::string> wrong_answers;  // in words
    int counted_twice = 0;                   // failures kept in the store beyond the attempts
    int checks_sent_twice = 0;
    int writes_sent_twice = 0;
    std::vector<std::string> lost_writes;  // acknowledged, and not there in either store
    // What a replicated directory may do.
    int stale = 0;      // an older value read where the server that took the write had failed, or
                        // more than 5 s later
    int late = 0;       // a write that failed was done afterwards and replaced a newer one
    int differing = 0;  // entries that the two stores do not have alike

    bool is_clean() const {
        return wrong_answers.empty() && counted_twice == 0 && checks_sent_twice == 0 &&
               writes_sent_twice == 0 && lost_writes.empty();
    }
};

// When all threads have ended and the pair has settled. `fault`: when the preferred server had its
// fault.
Verdict judge(const std::vector<Ledger>& ledgers, const Sightings& sightings, const Window& fault,
              const ShopPair& pair);

}  // namespace orvo::failover
