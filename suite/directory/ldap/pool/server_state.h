#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "suite/directory/ldap/wire/operation_figures.h"
#include "suite/directory/settings/clock.h"

namespace orvo::directory::ldap {

// How a server is doing, as this process has seen it.
struct ServerState {
    enum class Condition {
        up,
        suspected,  // an operation failed; the next probe decides
        down,       // a probe failed
    };

    std::string url;  // as the server setting may have it, of each server another one
    Condition condition = Condition::up;
    std::string reason;       // why it is not up; empty while it is
    Clock::time_point since;  // of the condition
    std::optional<Clock::time_point> next_probe;
    std::uint64_t operations = 0;  // that were answered, whatever the answer
    std::uint64_t failures = 0;    // that were not, and answers that the server is busy or closing
    std::chrono::microseconds latency{0};  // mean of the answers, the last ones counting most
    std::shared_ptr<const OperationFigures> figures = {};
};

}  // namespace orvo::directory::ldap
