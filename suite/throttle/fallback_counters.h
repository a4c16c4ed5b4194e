#pragma once

#include <atomic>

#include "suite/throttle/counters.h"

namespace orvo::throttle {

// Counts in the shared store, and while that cannot be reached in this process alone: a site whose
// store is away is no place where passwords can be guessed. What was counted here stays here. The
// log is told when the store goes away, and when it is back.
class FallbackCounters : public Counters {
public:
    // Both live longer.
    FallbackCounters(Counters& shared, Counters& local) : shared_(shared), local_(local) {}

    Place reserve(const Attempt& attempt, const Limits& limits) override;
    void settle(const Attempt& attempt, const Place& place, Outcome outcome,
                const Limits& limits) override;
    // In both; raise where the shared store cannot be reached.
    bool clear(const std::string& user) override;
    bool clear_address(const std::string& address) override;
    std::vector<CountedBudget> state(const Attempt& attempt, const Limits& limits) override;

private:
    // What the shared store answers, or else the local one.
    template <class Ask, class AskLocal>
    auto either(Ask ask, AskLocal ask_local);

    Counters& shared_;
    Counters& local_;
    std::atomic<bool> is_away_ = false;
};

}  // namespace orvo::throttle
