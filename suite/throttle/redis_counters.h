#pragma once

#include <functional>
#include <memory>
#include <string>

#include "suite/store/site_store.h"
#include "suite/throttle/counters.h"

namespace orvo::throttle {

// Counts in the site's shared store, for all its processes, and by the store's clock. Each question
// is one script there. A user and an address are keys of their own, which go when nothing of them
// is counted any more; their names can be guessed, so they are made with the first of the site's
// keys (Keyring::names_of):
//
//   <prefix>:throttle:user:<name>     a hash: "u" elsewhere, "p" programs, "k<name>" an address
//   <prefix>:throttle:address:<name>  a text
//
// Raises what store::Redis raises.
class RedisCounters final : public Counters {
public:
    // `now`: instead of the store's clock; for tests.
    explicit RedisCounters(std::shared_ptr<const store::SiteStore> site,
                           std::function<Moment()> now = {})
        : site_(std::move(site)), redis_(*site_->redis), now_(std::move(now)) {}

    Place reserve(const Attempt& attempt, const Limits& limits) override;
    void settle(const Attempt& attempt, const Place& place, Outcome outcome,
                const Limits& limits) override;
    bool clear(const std::string& user) override;
    bool clear_address(const std::string& address) override;
    std::vector<CountedBudget> state(const Attempt& attempt, const Limits& limits) override;

private:
    std::string name_of(const std::string& guessable) const;
    std::vector<std::string> keys(const Attempt& attempt) const;
    std::vector<std::string> arguments(const Attempt& attempt, const Limits& limits) const;
    std::string time() const;

    const std::shared_ptr<const store::SiteStore> site_;
    store::Redis& redis_;
    const std::function<Moment()> now_;
};

}  // namespace orvo::throttle
