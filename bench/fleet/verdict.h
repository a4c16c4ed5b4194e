#pragma once

// What the ledgers of all browsers say together, and whether that is good enough.

#include <array>
#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bench/fleet/chaos.h"

namespace orvo::fleet {

// What users noticed of one fault. A wish belongs to the slot in which most of it passed.
struct Noticed {
    std::size_t wishes = 0;
    std::size_t failures = 0;          // tries that failed
    double longest = 0;                // seconds for which a user went without what was wanted
    std::size_t browsers_without = 0;  // how many had an outage, and the most that one of them had
    std::size_t most_of_one = 0;
    std::size_t lost_logins = 0;
    std::optional<double> allowed;  // seconds; of the longest
};

struct Goal {
    std::string what;
    bool is_met;
};

struct Verdict {
    std::vector<Noticed> noticed;  // by slot
    std::uint64_t requests = 0;
    std::uint64_t asked_without_right = 0, asked_after_end = 0, unanswered_after_end = 0;
    std::array<std::vector<std::string>, 4> breaches;  // by Breach, in words
    std::map<std::string, std::size_t> failures;       // by fault, aim and reason
    // What a replicated directory may do: a value that is older than the last one, while a server
    // has a fault or has just had one, and one that was written late.
    std::size_t stale = 0, late = 0;
    // Older values that a node with a fault has shown again, within the quarter of a second for
    // which it remembers what it has read.
    std::size_t remembered = 0;
    std::vector<Goal> goals;

    const std::vector<std::string>& of(Breach breach) const {
        return breaches[static_cast<std::size_t>(breach)];
    }
    bool is_good() const;
};

// Without times only what is counted is judged: on a busy machine everything takes longer.
enum class Judged { everything, counts_alone };
Verdict judge(const ChaosOutcome& outcome, Judged judged);

}  // namespace orvo::fleet
