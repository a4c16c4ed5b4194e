#pragma once

#include <mutex>
#include <unordered_map>

#include "suite/authfilter/redis_store.h"
#include "suite/store/subscription.h"

namespace orvo::authfilter {

// The shared store, with what the guard asks on every request (ask, find, user_of) kept for live
// logins for a second at most. A copy is dropped as soon as this or another machine has ended or
// changed its login or record, and none is used while this one does not hear of that. It may take a
// second and Settings::time_limit to notice that it does not (Subscription): until then a login may
// be let in that has ended or whose store is away, but no later than a second after the store has
// last let it in.
//
// A question that a copy answers does not prolong the login, which so may end a second too early.
class CachedStore final : public Store {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds longest_use{1000};

    // `options.on_change` is this object's own.
    CachedStore(std::shared_ptr<const store::SiteStore> site, RedisStore::Options options = {},
                std::function<Clock::time_point()> now = Clock::now);

    std::optional<Record> find(const Text& guid) override;
    bool try_create(const Text& guid) override { return shared_.try_create(guid); }
    void save(const Text& guid, const Record& record) override { shared_.save(guid, record); }
    void begin(const Login& login) override { shared_.begin(login); }
    bool ask(const Text& guid, std::int32_t application) override;
    Text user_of(const Text& guid) override;
    void forget(const Text& guid) override { shared_.forget(guid); }
    std::vector<LiveLoginFacts> logins_of(const Text& guid) override {
        return shared_.logins_of(guid);
    }
    bool try_end(const Text& guid, std::uint64_t number) override {
        return shared_.try_end(guid, number);
    }
    std::size_t end_others(const Text& guid) override { return shared_.end_others(guid); }
    std::size_t end_all_of(const Text& account, const Text& except) override {
        return shared_.end_all_of(account, except);
    }
    void set_most_of_user(std::size_t most) override { shared_.set_most_of_user(most); }

private:
    using Live = RedisStore::Live;
    struct Copy {
        std::shared_ptr<const Live> live;  // null: it is being read, see ask()
        std::uint64_t reading = 0;
        Clock::time_point ends = {};
    };

    static RedisStore::Options told(RedisStore::Options options,
                                    std::function<void(const std::string&)> on_change);
    std::shared_ptr<const Live> copy_of(const std::string& name);
    std::shared_ptr<const Live> read(const Text& guid, const std::string& name);
    void drop(std::string_view name);
    void drop_all();
    void sweep_if_due();

    const std::function<Clock::time_point()> now_;
    std::mutex lock_;
    std::unordered_map<std::string, Copy> copies_;
    std::uint64_t readings_ = 0;
    Clock::time_point next_sweep_;
    RedisStore shared_;
    store::Subscription changes_;  // ends first
};

}  // namespace orvo::authfilter
