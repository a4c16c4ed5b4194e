#include "suite/throttle/fallback_counters.h"

#include "suite/log/log_entry.h"
#include "suite/log/tell_log.h"
#include "suite/store/store_error.h"

namespace orvo::throttle {
namespace {

constexpr const char16_t* source = u"OrvoSuite.Throttle";

}  // namespace

template <class Ask, class AskLocal>
auto FallbackCounters::either(Ask ask, AskLocal ask_local) {
    try {
        auto answer = ask();
        if (is_away_ && is_away_.exchange(false))
            tell_log(source, u"attempts are counted in the shared store again", log_level_note);
        return answer;
    } catch (const Failure& failure) {
        if (!store::is_unreachable(failure)) throw;
        if (!is_away_.exchange(true))
            tell_log(source, u"attempts are counted in this process alone: " + failure.description,
                     log_level_error);
        return ask_local();
    }
}

Place FallbackCounters::reserve(const Attempt& attempt, const Limits& limits) {
    return either([&] { return shared_.reserve(attempt, limits); },
                  [&] {
                      Place place = local_.reserve(attempt, limits);
                      place.is_local = true;
                      return place;
                  });
}

void FallbackCounters::settle(const Attempt& attempt, const Place& place, Outcome outcome,
                              const Limits& limits) {
    const auto settle_in = [&](Counters& counters) {
        counters.settle(attempt, place, outcome, limits);
        return true;
    };
    if (place.is_local)
        settle_in(local_);
    else
        either([&] { return settle_in(shared_); }, [&] { return settle_in(local_); });
}

bool FallbackCounters::clear(const std::string& user) {
    const bool had_any = local_.clear(user);
    return shared_.clear(user) || had_any;
}

bool FallbackCounters::clear_address(const std::string& address) {
    const bool had_any = local_.clear_address(address);
    return shared_.clear_address(address) || had_any;
}

std::vector<CountedBudget> FallbackCounters::state(const Attempt& attempt, const Limits& limits) {
    return either([&] { return shared_.state(attempt, limits); },
                  [&] { return local_.state(attempt, limits); });
}

}  // namespace orvo::throttle
