#include "host/web/sessions/shared_store.h"

#include "host/web/sessions/store_away.h"
#include "suite/store/store_error.h"

namespace orvo::web {

SharedStore::SharedStore(std::shared_ptr<const store::SiteStore> site, StoreClock now,
                         std::function<void(const std::string&)> trouble)
    : site_(std::move(site)),
      now_(std::move(now)),
      trouble_(std::move(trouble)),
      locks_([this](const store::Script& script, const std::string& key,
                    std::vector<std::string> arguments) {
          return run_repeatable(script, {key}, std::move(arguments));
      }) {}

template <class Ask>
store::Reply SharedStore::asked(Ask ask) {
    try {
        store::Reply reply = ask();
        if (is_away_.load(std::memory_order_relaxed) && is_away_.exchange(false) && trouble_)
            trouble_("the shared store can be reached again");
        return reply;
    } catch (const Failure& failure) {
        if (!store::is_unreachable(failure)) throw;
        if (!is_away_.exchange(true) && trouble_) trouble_(to_utf8(failure.description));
        throw StoreAway();
    }
}

store::Reply SharedStore::run(const store::Script& script, const std::vector<std::string>& keys,
                              std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), now());
    return asked([&] { return site_->redis->run(script, keys, arguments); });
}

store::Reply SharedStore::run_repeatable(const store::Script& script,
                                         const std::vector<std::string>& keys,
                                         std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), now());
    return asked([&] { return site_->redis->run_repeatable(script, keys, arguments); });
}

store::Reply SharedStore::run_repeatable(const store::Command& command) {
    return asked([&] { return site_->redis->run_repeatable(command); });
}

}  // namespace orvo::web
