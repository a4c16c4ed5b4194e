#pragma once

#include "suite/store/site_store.h"
#include "suite/store/store_settings.h"
#include "tests/support/redis_server.h"

namespace orvo {

// The settings of a site that uses the server.
inline store::Settings store_settings(const RedisServer& server) {
    return store::read_settings(parse_ini(server.site_section(), u"site.ini"), "site.ini");
}
// The same with another StoreURL, and more lines of the section.
inline store::Settings store_settings(const RedisServer& server, const std::string& url,
                                      const std::string& more = {}) {
    return store::read_settings(parse_ini(server.site_section(url, more), u"site.ini"), "site.ini");
}

// The store of such a site, as one of its machines has it.
inline std::shared_ptr<const store::SiteStore> store_of(const RedisServer& server) {
    store::Settings settings = store_settings(server);
    store::Keyring keyring = store::Keyring::read(settings.key_file);
    return std::make_shared<store::SiteStore>(
        store::SiteStore{std::make_shared<store::Redis>(std::move(settings)), std::move(keyring)});
}

}  // namespace orvo
