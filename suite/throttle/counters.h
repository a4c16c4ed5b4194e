#pragma once

// Where attempts are counted.

#include <chrono>
#include <string>
#include <vector>

#include "suite/throttle/attempt.h"
#include "suite/throttle/budget.h"

namespace orvo::throttle {

// Three kinds of budgets count wrong attempts:
//
//   of a user from one address  where the user has logged in before, and that address alone
//   of a user from elsewhere    all other addresses together; programs, which have none, apart
//   of an address               for all users together who have not logged in from there
//
// So somebody who tries many passwords for one user, be it from a thousand addresses, uses up the
// second kind, which leaves the user the first; and somebody who tries one password for many users
// uses up the third.
enum class Source { known_address, unknown_addresses, programs };

struct Limits {
    Limit user;
    Limit address;
    std::chrono::milliseconds known_for;  // an address, after the latest login from it
};

enum class Room {
    free,  // the attempt is within its budgets, and counts as one under way
    busy,  // it would be, if one of those that are under way were right; never of an address that
           // has used up half of its budget: those of an attack wait themselves
    none,
};

// What a store says to an attempt.
struct Place {
    Room room = Room::free;
    Source source = Source::programs;
    int wrong = 0;          // so far, of the user's budget
    bool is_local = false;  // for the store itself (Counters of several stores)
};

enum class Outcome { right, wrong, none };

// One budget as people are told of it.
struct CountedBudget {
    enum class Of { unknown_addresses, programs, known_address, address } of;
    int wrong = 0;
    int most = 0;
    std::chrono::milliseconds free_in{};  // until an attempt is admitted again
    bool is_asked = false;                // the one that the attempt in question uses

    // As Throttle::State has it.
    TextView name() const {
        constexpr TextView names[] = {u"unknown addresses", u"programs", u"known address",
                                      u"address"};
        return names[static_cast<int>(of)];
    }
    bool operator==(const CountedBudget&) const = default;
};

// Each operation is one step, whoever else counts at the same time. A user has so many known
// addresses; a login from another one makes the one that was used longest ago unknown. Any thread.
class Counters {
public:
    static constexpr std::size_t most_known_addresses = 16;

    virtual ~Counters() = default;

    // Whether there is room for an attempt; if so it is under way until settle.
    virtual Place reserve(const Attempt& attempt, const Limits& limits) = 0;
    // How an attempt ended for which there was room. A right one ends the wrong ones of its user
    // from its address, which is known from now on; it does not end those from elsewhere, nor those
    // of the address with others. None: it was not judged.
    virtual void settle(const Attempt& attempt, const Place& place, Outcome outcome,
                        const Limits& limits) = 0;
    // Forgets the wrong attempts of the user, or of the address for all users; whether there were
    // any.
    virtual bool clear(const std::string& user) = 0;
    virtual bool clear_address(const std::string& address) = 0;
    // What is counted for the user, and for the address where there is one.
    virtual std::vector<CountedBudget> state(const Attempt& attempt, const Limits& limits) = 0;
};

}  // namespace orvo::throttle
