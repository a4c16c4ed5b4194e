#pragma once

// Every store that counts, by a clock that the test sets.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "suite/throttle/counters.h"

namespace orvo::throttle {

using namespace std::chrono_literals;

struct CountersKind {
    const char* name;
    // A store that has counted nothing yet.
    std::unique_ptr<Counters> (*make)(std::function<Moment()> now);
};
inline void PrintTo(const CountersKind& kind, std::ostream* out) { *out << kind.name; }

inline const Attempt jsmith_at_home{"jsmith", "198.51.100.1"};
inline const Attempt jsmith_elsewhere{"jsmith", "203.0.113.7"};
inline const Attempt jsmith_in_program{"jsmith", ""};

// Three wrong attempts of a user in an hour and five of an address.
class CountersTest : public testing::TestWithParam<CountersKind> {
protected:
    Place reserve(const Attempt& attempt) { return counters_->reserve(attempt, limits_); }
    void settle(const Attempt& attempt, const Place& place, Outcome outcome) {
        counters_->settle(attempt, place, outcome, limits_);
    }
    // Whether it was let through.
    bool try_with(const Attempt& attempt, Outcome outcome) {
        const Place place = reserve(attempt);
        if (place.room != Room::free) return false;
        settle(attempt, place, outcome);
        return true;
    }
    bool guess(const Attempt& attempt) { return try_with(attempt, Outcome::wrong); }
    bool log_in(const Attempt& attempt) { return try_with(attempt, Outcome::right); }
    // How many guesses are let through, of twenty.
    int guesses(const std::function<Attempt(int)>& attempt) {
        int admitted = 0;
        for (int i = 0; i < 20; ++i) admitted += guess(attempt(i));
        return admitted;
    }
    int guesses(const Attempt& attempt) {
        return guesses([&](int) { return attempt; });
    }
    static Attempt from_many_places(int i) { return {"jsmith", "203.0.113." + std::to_string(i)}; }

    Limits limits_{{3, 20min}, {5, 12min}, 720h};
    Moment now_ = 1'000'000s;
    std::unique_ptr<Counters> counters_ = GetParam().make([this] { return now_; });
};

}  // namespace orvo::throttle
