#pragma once

// What a site expects to find in its directory, whatever kind that is.

#include <optional>

#include "host/admin/common/site_settings.h"
#include "host/admin/diagnosis/directory_view.h"
#include "host/admin/diagnosis/step.h"
#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/schema/object_classes.h"

namespace orvo::admin {

enum class Provider { ldap, embedded };
// Nothing for any other.
std::optional<Provider> try_provider_of(const SiteSettings& site);
// Raises std::runtime_error for any other.
Provider provider_of(const SiteSettings& site);

// The full name of what the settings name below the root: "ou=Users,o=Shop".
std::string below_root(const SiteSettings& site, const std::string& relative);
// The full name of an entry in a container of the settings.
std::string entry_below(const SiteSettings& site, const std::string& attribute,
                        const std::string& value, const std::string& container);

// The groups that roles and the like come from, each once.
std::vector<std::string> groups_of(const directory::DirectoryMap& map);

// That the schema has the product's attributes, and the classes that the settings name. `advice`:
// how it gets them.
Finding examine_schema(const SiteSettings& site, const directory::AttributeTypes& types,
                       const directory::ObjectClasses& classes, const std::string& advice);
// That the containers, and the groups of a map, are there.
Finding examine_containers(const SiteSettings& site, DirectoryView& view);
// That there is an account for each type that users have.
Finding examine_accounts(const SiteSettings& site, DirectoryView& view);
// What the service account has to read: entries of these classes with these attributes.
struct ReadEntries {
    const char* words;  // "users"
    std::string container;
    std::string object_class;
    std::vector<std::string> attributes;
};
std::vector<ReadEntries> entries_read(const SiteSettings& site);
// `cannot`: what it cannot read, with the entries in front: "users: mail, sn". `advice` ends with
// where.
Finding finding_of_reading(const SiteSettings& site, const std::string& cannot,
                           const std::string& advice);
// "a, b and 3 more"
std::string listed(const std::vector<std::string>& items);

// That somebody is an administrator.
Finding examine_administrators(const SiteSettings& site, DirectoryView& view);

}  // namespace orvo::admin
