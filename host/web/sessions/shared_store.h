#pragma once

// The site's shared store, as sessions and the application use it.

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/web/sessions/shared_locks.h"
#include "platform/values/failure.h"
#include "suite/store/site_store.h"

namespace orvo::web {

// Milliseconds since 1970.
using StoreClock = std::function<std::chrono::milliseconds()>;

// Any thread.
class SharedStore {
public:
    // now: the store's own clock where there is none. trouble: gets a sentence for the log when the
    // store cannot be reached any more, and when it can be again; while it refuses to do what it is
    // asked, because it is full, say, one every ten seconds. Any thread. gathering: SharedLocks'.
    explicit SharedStore(std::shared_ptr<const store::SiteStore> site, StoreClock now = {},
                         std::function<void(const std::string&)> trouble = {},
                         std::chrono::milliseconds gathering = SharedLocks::usual_gathering);

    // As store::Redis does, with the time in front of the arguments. Raise StoreAway in the place
    // of store_unreachable.
    store::Reply run(const store::Script& script, const std::vector<std::string>& keys,
                     std::vector<std::string> arguments);
    store::Reply run_repeatable(const store::Script& script, const std::vector<std::string>& keys,
                                std::vector<std::string> arguments);
    store::Reply run_repeatable(const store::Command& command);
    bool is_reachable() const { return site_->redis->is_reachable(); }

    std::string seal(std::string_view plain, std::string_view context) const {
        return site_->keyring.seal(plain, context);
    }
    std::optional<std::string> unseal(std::string_view sealed, std::string_view context) const {
        return site_->keyring.unseal(sealed, context);
    }
    std::string key(std::string_view what) const { return site_->redis->key(what); }
    std::string key(std::string_view what, std::string_view name) const {
        return site_->redis->key(what, name);
    }
    const std::shared_ptr<store::Redis>& redis() const { return site_->redis; }
    SharedLocks& locks() { return locks_; }

private:
    template <class Ask>
    store::Reply asked(Ask ask);
    // Not where one has been told a moment ago.
    bool try_tell(const Failure& failure);
    std::string now() const { return now_ ? std::to_string(now_().count()) : std::string(); }

    const std::shared_ptr<const store::SiteStore> site_;
    const StoreClock now_;
    const std::function<void(const std::string&)> trouble_;
    std::atomic<bool> is_told_away_ = false;
    std::atomic<std::chrono::steady_clock::time_point> tell_from_{};
    SharedLocks locks_;
};

}  // namespace orvo::web
