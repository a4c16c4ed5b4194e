#include "host/web/sessions/site_state.h"

#include <limits>

#include "host/web/sessions/memory_application.h"
#include "host/web/sessions/memory_sessions.h"
#include "host/web/sessions/redis_application.h"
#include "host/web/sessions/redis_sessions.h"

namespace orvo::web {
namespace {

// Of all machines together their bytes count alone: the smallest session takes some, too.
SessionLimits shared_limits(SessionLimits limits) {
    limits.most = std::numeric_limits<std::int32_t>::max();
    return limits;
}

}  // namespace

SiteState::SiteState(const SessionLimits& limits, std::function<void(const std::string&)> trouble) {
    if (auto site = store::site_store()) {
        shared_ = std::make_unique<SharedStore>(std::move(site), StoreClock(), std::move(trouble));
        sessions_ = std::make_unique<RedisSessions>(*shared_, shared_limits(limits));
        application_ = std::make_shared<RedisApplication>(*shared_);
        try {
            sessions_->require();
        } catch (const StoreAway&) {
            // It has been told; what needs no store is served meanwhile.
        }
    } else {
        sessions_ = std::make_unique<MemorySessions>(limits);
        application_ = std::make_shared<MemoryApplication>();
    }
}

SiteState::~SiteState() = default;

void SiteState::set_limits(const SessionLimits& limits) {
    sessions_->set_limits(shared_ ? shared_limits(limits) : limits);
}

}  // namespace orvo::web
