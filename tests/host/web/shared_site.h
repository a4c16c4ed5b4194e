#pragma once

#include "host/web/sessions/shared_store.h"
#include "tests/support/redis_server.h"
#include "tests/support/store_settings.h"

namespace orvo::web {

// Longer than any test: who asks for nothing more keeps what it was to release.
inline constexpr std::chrono::hours no_end_of_gathering{1};

// What one machine of a site has of the store that they share; all of a server's have one key.
inline std::unique_ptr<SharedStore> machine_of(
    store::Settings settings, StoreClock now = {},
    std::chrono::milliseconds gathering = SharedLocks::usual_gathering,
    std::function<void(const std::string&)> trouble = {}) {
    auto keyring = store::Keyring::read(settings.key_file);
    auto redis = std::make_shared<store::Redis>(std::move(settings));
    return std::make_unique<SharedStore>(std::make_shared<const store::SiteStore>(store::SiteStore{
                                             std::move(redis), std::move(keyring)}),
                                         std::move(now), std::move(trouble), gathering);
}

inline std::unique_ptr<SharedStore> machine_of(
    const RedisServer& server, StoreClock now = {},
    std::chrono::milliseconds gathering = SharedLocks::usual_gathering) {
    return machine_of(store_settings(server), std::move(now), gathering);
}

}  // namespace orvo::web
