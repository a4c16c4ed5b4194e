#include "host/web/directory_setup.h"

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/values.h"

namespace orvo::web {
namespace {

void hand_over(const Object& initialize, TextView member,
               const std::vector<ProviderSetting>& settings) {
    if (settings.empty()) return;
    Values names, values;
    for (const ProviderSetting& setting : settings) {
        names.push_back(setting.name);
        values.push_back(setting.value);
    }
    late::call(initialize, member, {std::move(names), std::move(values)});
}

}  // namespace

void set_up_directory(const Site& site) {
    if (site.directory_pool.empty() && site.directory_cache.empty()) return;
    const Object initialize = create_object(u"OrvoMembership.Initialize");
    hand_over(initialize, u"InitializeConnectionPool", site.directory_pool);
    hand_over(initialize, u"InitializeCache", site.directory_cache);
}

}  // namespace orvo::web
