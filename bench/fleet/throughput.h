#pragma once

#include <chrono>
#include <ostream>

namespace orvo::fleet {

struct ThroughputOptions {
    std::size_t browsers = 16;
    std::chrono::seconds each{5};  // how long one row is measured, once a round
    int rounds = 3;
    std::size_t logins = 5000;  // whose memory is measured
};

// Prints what fleets of one, two and three nodes serve, what a login and a page cost the processor,
// how a node that shares its store compares with one that keeps it in memory, and what a session
// takes of memory. Where an answer is not what it should be it raises std::runtime_error.
void measure_throughput(const ThroughputOptions& options, std::ostream& out);

}  // namespace orvo::fleet
