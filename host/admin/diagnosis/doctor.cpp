#include "host/admin/diagnosis/doctor.h"

#include <algorithm>
#include <iostream>

#include "host/admin/common/site_settings.h"
#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/embedded_file.h"
#include "host/admin/diagnosis/ldap_server.h"
#include "host/admin/diagnosis/report.h"

namespace orvo::admin {
namespace {

std::vector<Examination> examine_all(const SiteSettings& site) {
    std::vector<Examination> report;
    if (provider_of(site) == Provider::embedded) {
        EmbeddedFile file{site};
        report.push_back({site.server, examine_file(file)});
        return report;
    }
    const auto address = directory::ldap::ServerAddress::parse(from_utf8(site.server));
    for (const directory::ldap::ServerHost& host : address.hosts()) {
        LdapServer server{site, host};
        report.push_back({host.url(), examine_server(server)});
    }
    return report;
}

}  // namespace

bool examine_site(const DoctorRequest& request) {
    const SiteSettings site = read_site_settings(site_file(request.site));
    const std::vector<Examination> report = examine_all(site);
    constexpr const char* failed = "failed";
    if (request.is_json)
        write_json(std::cout, report, failed);
    else
        write_text(std::cout, report, failed, Terminal::of_output());
    return std::ranges::none_of(report, &Examination::has_failed);
}

}  // namespace orvo::admin
