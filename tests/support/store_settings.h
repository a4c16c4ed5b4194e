#pragma once

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

}  // namespace orvo
