#pragma once

// The table of what may stand in site.ini.

#include <span>

#include "host/web/site/site_setting.h"

namespace orvo::web {

// Of a number: its bounds, and the unit in `values`.
struct SiteKey {
    TextView name;
    std::int64_t least = 0;
    std::int64_t most = 0;
    const char* values;
    std::string (*otherwise)(const Site& usual);
    const char* about;
    void (*read)(const SiteSetting& setting, Site& site);
};

std::span<const SiteKey> site_keys();

}  // namespace orvo::web
