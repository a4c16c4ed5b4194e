#include "host/admin/diagnosis/throttled_names.h"

#include "host/admin/common/site_settings.h"
#include "host/admin/diagnosis/account_source.h"

namespace orvo::admin {

std::vector<std::string> throttled_names(const std::filesystem::path& site,
                                         const std::string& name) {
    const SiteSettings settings = read_site_settings(site);
    std::vector<std::string> names{name};
    if (!settings.map) return names;
    const std::unique_ptr<AccountSource> accounts = open_accounts(settings);
    const std::vector<std::string> called = accounts->all_called(name);
    if (called.size() != 1) return names;
    for (std::string& other : accounts->login_names(called.front()))
        names.push_back(std::move(other));
    return names;
}

}  // namespace orvo::admin
