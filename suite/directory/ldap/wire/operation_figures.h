#pragma once

// What the operations on one server cost, counted where they are sent.

#include <array>
#include <chrono>

#include "platform/values/metric.h"

namespace orvo::directory::ldap {

enum class OperationKind {
    connect,
    bind,
    read,  // of one entry
    search,
    modify,
    add,
    remove,
    password,  // a change of a password, however the server wants it
    extended,  // others
};

// By kind, as they are told to others.
inline constexpr std::array<const char*, 9> operation_names{
    "connect", "bind", "read", "search", "modify", "add", "delete", "password modify", "extended"};

// Any thread.
class OperationFigures {
public:
    struct OfOneKind {
        DurationHistogram durations;  // of all
        Counter failures;             // no answer, or "busy" or "unavailable"
    };

    void note(OperationKind kind, std::chrono::nanoseconds took, bool has_failed) noexcept {
        OfOneKind& figures = kinds_[static_cast<std::size_t>(kind)];
        figures.durations.observe(took);
        if (has_failed) figures.failures.add();
    }
    const std::array<OfOneKind, operation_names.size()>& kinds() const { return kinds_; }

    Counter retries;    // operations that were tried again after this server had failed them
    Counter failovers;  // of these, and of connections, those that went on to another server

private:
    std::array<OfOneKind, operation_names.size()> kinds_;
};

}  // namespace orvo::directory::ldap
