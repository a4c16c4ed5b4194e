#include "host/web/site/directory_setup.h"

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/values.h"
#include "suite/audit/audit_call.h"
#include "suite/configuration/ini_files.h"
#include "suite/configuration/value_reference.h"
#include "suite/throttle/throttle_call.h"

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

std::string warning_of_open_password(const std::filesystem::path& configuration) {
    std::error_code error;
    const auto mode = std::filesystem::status(configuration, error).permissions();
    if (error || (mode & std::filesystem::perms::others_read) == std::filesystem::perms::none)
        return {};
    try {
        const std::shared_ptr<const IniValues> values = load_ini_file(configuration);
        const Text* code = values->find(u"MEMBERSHIP", u"MemScriptCode");
        if (!code || code->empty() || is_reference(*code)) return {};
    } catch (const Failure&) {
        return {};
    }
    return "everybody on this machine may read " + configuration.string() +
           ", which holds the service account's password: take the right away (chmod o-r), or keep "
           "the password in a file of its own (MemScriptCode=@file:service.code)";
}

std::string warning_of_closed_logins() {
    try {
        audit::try_audit();
        throttle::try_throttle();
        return {};
    } catch (const Failure& failure) {
        return "nobody can log in: " + to_utf8(failure.description);
    }
}

}  // namespace orvo::web
