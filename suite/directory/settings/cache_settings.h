#pragma once

#include <chrono>
#include <cstddef>

#include "platform/values/variant.h"

namespace orvo::directory {

struct CacheSettings {
    std::size_t entries = 0;  // 0: none but what a bind has just fetched
    std::chrono::seconds time_to_live{60};
};

// The settings changed by what InitializeCache is given; those that are not named stay. Raises what
// read_numbers raises.
//
//   Entries       0 to 1000000          TimeToLive    seconds, 1 to 86400
CacheSettings changed(CacheSettings settings, const Variant& names, const Variant& values);

}  // namespace orvo::directory
