#include "suite/directory/settings/cache_settings.h"

#include "suite/directory/settings/named_numbers.h"

namespace orvo::directory {
namespace {

constexpr NumberSetting numbers[] = {
    {"Entries", 0, 1'000'000, "How many entries are kept; 0 keeps none."},
    {"TimeToLive", 1, 86'400, "How long an entry is kept after it was read."},
};

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

std::vector<DescribedSetting> described_cache_settings() {
    const CacheSettings usual;
    return {described(numbers[0], "entries", static_cast<std::int64_t>(usual.entries)),
            described(numbers[1], "seconds", usual.time_to_live.count())};
}

}  // namespace orvo::directory
