#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include "platform/values/described_setting.h"
#include "platform/values/variant.h"

namespace orvo::directory {

struct CacheSettings {
    std::size_t entries = 0;  // 0: none but what a bind has just fetched
    std::chrono::seconds time_to_live{60};
};

// The settings changed by what InitializeCache is given; those that are not named stay. Raises what
// read_numbers raises.
CacheSettings changed(CacheSettings settings, const Variant& names, const Variant& values);

// Their names, units, ranges and defaults.
std::vector<DescribedSetting> described_cache_settings();

}  // namespace orvo::directory
