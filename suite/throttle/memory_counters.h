#pragma once

#include <functional>
#include <mutex>
#include <optional>

#include "suite/throttle/counters.h"
#include "suite/throttle/evicting_map.h"

namespace orvo::throttle {

Moment steady_now();

// Counts in the memory of one process. Its memory is bounded, however many names are tried: those
// are forgotten first that have used less than half of their budgets, last those that have known
// addresses.
class MemoryCounters final : public Counters {
public:
    explicit MemoryCounters(std::function<Moment()> now = steady_now) : now_(std::move(now)) {}

    // How many users are counted, and as many addresses.
    void set_most(std::size_t most);

    Place reserve(const Attempt& attempt, const Limits& limits) override;
    void settle(const Attempt& attempt, const Place& place, Outcome outcome,
                const Limits& limits) override;
    bool clear(const std::string& user) override;
    bool clear_address(const std::string& address) override;
    std::vector<CountedBudget> state(const Attempt& attempt, const Limits& limits) override;

    std::size_t user_count() const;
    std::size_t address_count() const;

private:
    struct KnownAddress {
        std::string address;
        Moment login;  // the latest
        Budget budget = {};
    };
    struct User {
        Budget unknown_addresses;
        Budget programs;
        std::vector<KnownAddress> known = {};

        KnownAddress* find(const std::string& address, const Limits& limits, Moment now);
        Budget& budget(const Attempt& attempt, Source source, const Limits& limits, Moment now);
    };

    // All of these: with the lock held.
    Source source_of(User* user, const Attempt& attempt, const Limits& limits, Moment now);
    void keep_user(const std::string& key, User& user, const Limits& limits, Moment now);
    void keep_address(const std::string& key, Budget& budget, const Limits& limits, Moment now);
    static void note_login(User& user, const std::string& address, Moment now);

    const std::function<Moment()> now_;
    mutable std::mutex mutex_;
    std::size_t most_ = 50'000;
    EvictingMap<User> users_;
    EvictingMap<Budget> addresses_;
};

}  // namespace orvo::throttle
