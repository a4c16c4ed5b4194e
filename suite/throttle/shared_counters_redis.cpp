#include "suite/store/site_store.h"
#include "suite/throttle/fallback_counters.h"
#include "suite/throttle/redis_counters.h"
#include "suite/throttle/shared_counters.h"

namespace orvo::throttle {
namespace {

class SiteCounters final : public FallbackCounters {
public:
    SiteCounters(std::unique_ptr<RedisCounters> shared, Counters& local)
        : FallbackCounters(*shared, local), owned_(std::move(shared)) {}

private:
    const std::unique_ptr<RedisCounters> owned_;
};

}  // namespace

std::unique_ptr<Counters> shared_counters(Counters& local) {
    auto site = store::site_store();
    if (!site) return nullptr;
    return std::make_unique<SiteCounters>(std::make_unique<RedisCounters>(std::move(site)), local);
}

}  // namespace orvo::throttle
