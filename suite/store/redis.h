#pragma once

// The connections to the shared store.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "suite/store/command.h"
#include "suite/store/reply.h"
#include "suite/store/store_settings.h"

namespace orvo {

class Deadline;

namespace store {

class Pool;

// Runs commands on the store's master (Redis 7 or later, not a cluster): the one of the addresses
// that is a master, or the one that Sentinel names. A command takes a connection for itself; there
// are Settings::most_connections at most, who comes when all are in use waits.
//
// Whatever happens, a call returns within Settings::time_limit. It raises
//
//     store_unreachable  see store_error.h
//     store_refused      the store answers with an error
//
// A command of which something may have been sent is never sent again, but for those that
// run_repeatable is asked for; where nothing was sent, or the server says that it did nothing
// (it is no master any more), it goes to the master of that moment.
//
// When the store cannot be reached, calls fail at once until it answers again, which a thread of
// this object tries, every fifth of a second and only as long.
//
// Any thread.
class Redis {
public:
    // Reads StoreCA; connects when it first has to. Raises configuration_error's numbers.
    explicit Redis(Settings settings);
    ~Redis();
    Redis(const Redis&) = delete;
    Redis& operator=(const Redis&) = delete;

    Reply run(const Command& command);
    // By its SHA-1, and where the store does not know it yet, by its text.
    Reply run(const Script& script, const std::vector<std::string>& keys,
              const std::vector<std::string>& arguments);
    // For what may as well be done twice (reading, say): sent once more, within the same limit,
    // where the connection is lost before the answer.
    Reply run_repeatable(const Command& command);
    Reply run_repeatable(const Script& script, const std::vector<std::string>& keys,
                         const std::vector<std::string>& arguments);
    // All of them in one round trip, in this order; others' commands may come between. Where the
    // store refuses one, the others are done all the same, and the first refusal is raised.
    std::vector<Reply> run_all(const std::vector<Command>& commands);

    // False from a failure to reach it until it answers again. Before the first call: true.
    bool is_reachable() const;

    // Since the object was made.
    struct Counts {
        std::uint64_t commands;                // that were answered, or failed
        std::uint64_t failures;                // of these, with store_unreachable
        std::uint64_t connects;                // connections that were made
        std::uint64_t failovers;               // how often another master was found than before
        std::size_t connections;               // now
        std::size_t in_use;                    // of these
        std::chrono::microseconds total_time;  // of all commands
    };
    Counts counts() const;

    const Settings& settings() const;
    // Settings::key.
    std::string key(std::string_view what) const { return settings().key(what); }
    std::string key(std::string_view what, std::string_view name) const {
        return settings().key(what, name);
    }

private:
    friend class Subscription;
    enum class Repeat { never, once };
    struct Exchange;

    std::vector<Reply> exchange(const Exchange& asked);
    std::vector<Reply> ask(const Exchange& asked, const Deadline& deadline);
    Reply run_script(const Script& script, const std::vector<std::string>& keys,
                     const std::vector<std::string>& arguments, Repeat repeat);

    const std::unique_ptr<Pool> pool_;
    std::atomic<std::uint64_t> commands_ = 0;
    std::atomic<std::uint64_t> failures_ = 0;
    std::atomic<std::uint64_t> microseconds_ = 0;
};

}  // namespace store
}  // namespace orvo
