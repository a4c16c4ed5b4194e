#include "host/admin/diagnosis/lockout.h"

#include "host/admin/diagnosis/account_source.h"
#include "host/admin/diagnosis/content_steps.h"

namespace orvo::admin {

Lockout lockout_of(const std::filesystem::path& file, const std::string& user) {
    const SiteSettings site = read_site_settings(file);
    if (!try_provider_of(site)) return Lockout::not_known;
    const auto source = open_accounts(site);
    const auto entry =
        source->view().find(entry_below(site, site.naming_attribute, user, site.users));
    if (!entry) return Lockout::not_known;
    const Policy policy = source->policy_of(*entry);
    if (policy.kind == Policy::Kind::hidden) return Lockout::not_known;
    const bool locks = policy.kind == Policy::Kind::known && policy.rules.lockout;
    return locks ? Lockout::in_force : Lockout::none;
}

}  // namespace orvo::admin
