#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

#include "suite/throttle/counters.h"
#include "suite/throttle/throttle_settings.h"

namespace orvo::throttle {

Limits limits_of(const Settings& settings);

// How long an attempt waits after so many wrong ones of its user: not at all at first, then a
// quarter of a second and with each further one twice as long, up to the longest delay.
std::chrono::milliseconds delay_after(int wrong, const Settings& settings);

// Lets attempts through, after a delay or at once, or not. Its process has one. Any thread.
class Gate {
public:
    using Pause = std::function<void(std::chrono::milliseconds)>;

    // `pause` waits, and raises nothing.
    explicit Gate(Counters& counters, Pause pause = sleep);

    // An attempt that was let through, as it is counted: under the name that was given, and under
    // that of the user whom a directory has found by it.
    struct Ticket {
        struct Counted {
            Attempt attempt;
            Place place;
        };
        Counted given;
        std::optional<Counted> found = {};
    };

    // Nothing where there were too many, and where more attempts wait than may. An attempt for
    // which there is room only if one of those under way is right waits for these: as long as they
    // are many people's logins they are over at once.
    std::optional<Ticket> admit(const Attempt& attempt, const Settings& settings);
    // Of a user who has other names, too: false where there were too many by all of them. Once for
    // a ticket. Without a delay: the name that was given has had its own, and those who ask must
    // not learn that it is one of several.
    bool admit_found(Ticket& ticket, const std::string& user, const Settings& settings);
    // Once for each ticket.
    void settle(const Ticket& ticket, Outcome outcome, const Settings& settings);

    struct Figures {
        std::uint64_t admitted = 0;
        std::uint64_t delayed = 0;
        std::uint64_t refused = 0;
        std::uint64_t wrong = 0;
        int waiting = 0;
    };
    Figures figures() const;

    static void sleep(std::chrono::milliseconds time);

private:
    std::optional<Place> place_for(const Attempt& attempt, const Settings& settings);
    bool wait(std::chrono::milliseconds delay, int most_waiting);

    Counters& counters_;
    const Pause pause_;
    std::atomic<std::uint64_t> admitted_ = 0, delayed_ = 0, refused_ = 0, wrong_ = 0;
    std::atomic<int> waiting_ = 0;
};

}  // namespace orvo::throttle
