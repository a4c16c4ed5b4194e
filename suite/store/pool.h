#pragma once

// The connections of one Redis object.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/module/prober.h"
#include "suite/store/lost.h"
#include "suite/store/masters.h"

namespace orvo::store {

// Connections to the master: idle ones, the places of all, and whether the master is reached at
// all. While it is not, nobody gets a connection, and a thread tries to make one. Thread-safe.
class Pool {
public:
    using Clock = std::chrono::steady_clock;

    // Raises what Masters raises.
    explicit Pool(Settings settings);
    Pool(const Pool&) = delete;

    // A connection in use, which is released with it.
    class Lease {
    public:
        Lease(Pool& pool, std::unique_ptr<Connection> connection, std::uint64_t generation)
            : pool_(pool), connection_(std::move(connection)), generation_(generation) {}
        Lease(const Lease&) = delete;
        ~Lease() { pool_.release(std::move(connection_), generation_); }

        Connection& operator*() const { return *connection_; }
        Connection* operator->() const { return connection_.get(); }
        // It is of no use any more, nor are those that were made before now: the server has ended,
        // does not answer, or is no master any more. Where it was silent for half of the time limit
        // the store is away; who had to wait for a connection may have had less time to ask.
        void discard(const Lost& lost);

    private:
        Pool& pool_;
        std::unique_ptr<Connection> connection_;  // null: it was discarded
        const std::uint64_t generation_;
        const Clock::time_point begin_ = Clock::now();
    };
    // An idle connection that has not ended, or a new one. Waits while all are in use. Raises Lost.
    Lease acquire(const Deadline& deadline);

    bool is_reachable() const;
    const Settings& settings() const { return settings_; }
    Masters& masters() { return masters_; }

    struct Counts {
        std::uint64_t connects;
        std::size_t connections;
        std::size_t in_use;
    };
    Counts counts() const;

private:
    std::unique_ptr<Connection> take_idle();
    std::unique_ptr<Connection> connect(const Deadline& deadline);
    void release(std::unique_ptr<Connection> connection, std::uint64_t generation);
    void end_generation(std::uint64_t generation);
    bool was_silent_for_long(Clock::time_point begin) const;
    void go_away(const std::string& reason);
    std::optional<Clock::time_point> probe();

    const Settings settings_;
    Masters masters_;
    mutable std::mutex mutex_;  // for the rest
    std::condition_variable released_;
    std::vector<std::unique_ptr<Connection>> idle_;  // the latest released last
    std::size_t in_use_ = 0;                         // places that are taken
    std::uint64_t generation_ = 0;
    std::uint64_t connects_ = 0;
    std::optional<std::string> away_;  // why the master is not reached

    Prober prober_;  // ends first
};

}  // namespace orvo::store
