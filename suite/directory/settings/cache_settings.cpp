#include "suite/directory/settings/cache_settings.h"

#include "suite/directory/settings/named_numbers.h"

namespace orvo::directory {
namespace {

constexpr NumberSetting numbers[] = {{"Entries", 0, 1'000'000}, {"TimeToLive", 1, 86'400}};

}  // namespace

CacheSettings changed(CacheSettings settings, const Variant& names, const Variant& values) {
    for (const GivenNumber& given : read_numbers(names, values, numbers)) {
        if (given.setting == 0)
            settings.entries = static_cast<std::size_t>(given.number);
        else
            settings.time_to_live = std::chrono::seconds(given.number);
    }
    return settings;
}

}  // namespace orvo::directory
