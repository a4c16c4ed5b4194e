#include "host/admin/people/profile_admin.h"

#include <iostream>
#include <stdexcept>

#include "host/admin/common/component_failure.h"
#include "host/admin/common/exit_codes.h"
#include "host/admin/common/output.h"
#include "host/admin/common/site.h"
#include "host/admin/common/texts.h"
#include "host/admin/people/attribute_changes.h"
#include "host/admin/people/attribute_table.h"
#include "host/admin/people/catalogue.h"
#include "host/admin/people/each_name.h"
#include "host/admin/people/grants.h"
#include "host/admin/people/user_rows.h"

namespace orvo::admin {
namespace {

OutputRow row_of(const Site& site, const std::string& name,
                 const std::vector<std::string>& attributes) {
    const orvo::Profile profile = site.profile(name);
    OutputRow row{site.profile_entry(name), {}};
    for (const std::string& attribute : attributes)
        row.values.push_back(texts_of(profile.GetAttribValue(attribute)));
    return row;
}

}  // namespace

int list_profiles(const ProfileListRequest& request) {
    const Site site(request.common.site);
    std::vector<std::string> attributes = request.rows.columns;
    if (attributes.empty()) attributes = {"cn", "LanguageID", "Locale", "OrvoRole", "OrvoApps"};
    const auto writer = make_row_writer(request.rows.format, std::cout, columns_of(attributes),
                                        Terminal::of_output());
    for (const std::string& name : profile_names(site))
        writer->write(row_of(site, name, attributes));
    writer->finish();
    return done;
}

int show_profiles(const NamesRequest& request) {
    const Site site(request.common.site);
    std::vector<std::string> attributes = request.rows.columns;
    if (attributes.empty()) {
        attributes = {"cn"};
        for (std::string& name : profile_attributes()) attributes.push_back(std::move(name));
    }
    AttributeTable table(request.rows.format, attributes);
    const int code = for_each_name(request.names, [&](const std::string& name) {
        table.write(row_of(site, name, attributes));
    });
    table.finish();
    return code;
}

int add_profile(const AssignmentsRequest& request) {
    const std::vector<AttributeChange> changes = parse_assignments(request.assignments);
    const Site site(request.common.site);
    const Profiles profiles = site.profiles();
    const orvo::Profile profile = [&] {
        try {
            return profiles.CreateProfile(request.name);
        } catch (const Error& failure) {
            if (!is_existing_entry(failure)) throw;
            throw std::runtime_error("there is a profile '" + request.name + "' already");
        }
    }();
    finish_new([&] { change_attributes(profile, changes); },
               [&] { profiles.DeleteProfile(request.name); });
    say(request.common, request.name, "made");
    return done;
}

int set_profile(const AssignmentsRequest& request) {
    return set_attributes(request, &Site::profile);
}

int remove_profiles(const NamesRequest& request) {
    const Site site(request.common.site);
    const Profiles profiles = site.profiles();
    return for_each_name(request.names, [&](const std::string& name) {
        site.profile(name);
        if (!profiles.DeleteProfile(name))
            throw std::runtime_error("the profile '" + name +
                                     "' has users: see orvo profiles users");
        say(request.common, name, "removed");
    });
}

int grant_profile_roles(const GrantRequest& request) {
    return grant(granted_roles, request, Site(request.common.site).profile(request.name));
}

int grant_profile_applications(const GrantRequest& request) {
    return grant(granted_applications, request, Site(request.common.site).profile(request.name));
}

}  // namespace orvo::admin
