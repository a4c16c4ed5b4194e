#include "host/web/sessions/shared_store.h"

#include "host/web/sessions/store_away.h"
#include "suite/store/store_error.h"

namespace orvo::web {

namespace {

// A store that refuses what it is asked is told of again and again: other commands it carries out.
constexpr std::chrono::seconds told_every{10};

}  // namespace

SharedStore::SharedStore(std::shared_ptr<const store::SiteStore> site, StoreClock now,
                         std::function<void(const std::string&)> trouble,
                         std::chrono::milliseconds gathering)
    : site_(std::move(site)),
      now_(std::move(now)),
      trouble_(std::move(trouble)),
      locks_(
          [this](const store::Script& script, const std::vector<std::string>& keys,
                 std::vector<std::string> arguments) {
              return run_repeatable(script, keys, std::move(arguments));
          },
          gathering) {}

template <class Ask>
store::Reply SharedStore::asked(Ask ask) {
    try {
        store::Reply reply = ask();
        if (is_told_away_.load(std::memory_order_relaxed) && is_told_away_.exchange(false))
            trouble_("the shared store can be reached again");
        return reply;
    } catch (const store::RefusedNow& failure) {
        try_tell(failure);
        throw StoreAway();
    } catch (const Failure& failure) {
        if (!store::is_unreachable(failure)) throw;
        if (try_tell(failure)) is_told_away_ = true;
        throw StoreAway();
    }
}

bool SharedStore::try_tell(const Failure& failure) {
    const auto now = std::chrono::steady_clock::now();
    auto from = tell_from_.load();
    if (!trouble_ || is_told_away_ || now < from ||
        !tell_from_.compare_exchange_strong(from, now + told_every))
        return false;
    trouble_(to_utf8(failure.description));
    return true;
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
