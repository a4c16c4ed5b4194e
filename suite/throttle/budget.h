#pragma once

#include <algorithm>
#include <chrono>

namespace orvo::throttle {

// A time of the store that counts, since an epoch of its own.
using Moment = std::chrono::milliseconds;

// How many wrong attempts there may be: `most` at once, each of which is forgotten `each` later
// than the one before.
struct Limit {
    int most;
    Moment each;
};
inline Limit limit_of(int most, std::chrono::milliseconds window) {
    return {most, std::max(window / most, Moment(1))};
}

// After so long what is still under way is not counted as such any more: whoever began it is gone.
// A wrong attempt that ends later counts all the same.
inline constexpr std::chrono::minutes longest_attempt{2};

// Attempts that were wrong, and those that are under way, which may turn out to be. Together they
// never are more than the limit.
struct Budget {
    Moment until{};     // when all wrong ones are forgotten
    int under_way = 0;  // at `begun`, when the latest one began
    Moment begun{};

    int wrong(const Limit& limit, Moment now) const {
        return until <= now ? 0
                            : static_cast<int>((until - now + limit.each - Moment(1)) / limit.each);
    }
    int under_way_at(Moment now) const { return now - begun < longest_attempt ? under_way : 0; }
    bool is_empty(Moment now) const { return until <= now && under_way_at(now) == 0; }
    // How long it takes until another attempt would be within the limit, were none under way.
    Moment free_in(const Limit& limit, Moment now) const {
        return std::max(until - now - (limit.most - 1) * limit.each, Moment(0));
    }

    void begin(Moment now) {
        under_way = under_way_at(now) + 1;
        begun = now;
    }
    void end(Moment now) { under_way = std::max(under_way_at(now) - 1, 0); }
    void count_wrong(const Limit& limit, Moment now) {
        until = std::min(std::max(until, now) + limit.each, now + limit.most * limit.each);
    }
    void forget_wrong() { until = Moment(0); }
    // Nothing lasts longer than if it had been counted now, although the store's clock has gone
    // back since, or the limits were higher then. Whether that changes anything.
    bool cut_to(const Limit& limit, Moment now) {
        const Budget before = *this;
        until = std::min(until, now + limit.most * limit.each);
        begun = std::min(begun, now);
        return until != before.until || begun != before.begun;
    }
};

}  // namespace orvo::throttle
