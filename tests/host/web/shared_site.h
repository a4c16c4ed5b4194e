#pragma once

#include "host/web/sessions/shared_store.h"
#include "tests/support/redis_server.h"
#include "tests/support/store_settings.h"

namespace orvo::web {

// What one machine of a site has of the store that they share; all of a server's have one key.
inline std::unique_ptr<SharedStore> machine_of(store::Settings settings, StoreClock now = {}) {
    auto keyring = store::Keyring::read(settings.key_file);
    auto redis = std::make_shared<store::Redis>(std::move(settings));
    return std::make_unique<SharedStore>(std::make_shared<const store::SiteStore>(store::SiteStore{
                                             std::move(redis), std::move(keyring)}),
                                         std::move(now));
}

inline std::unique_ptr<SharedStore> machine_of(const RedisServer& server, StoreClock now = {}) {
    return machine_of(store_settings(server), std::move(now));
}

}  // namespace orvo::web
