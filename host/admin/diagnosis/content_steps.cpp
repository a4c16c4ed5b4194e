#include "host/admin/diagnosis/content_steps.h"

#include <algorithm>
#include <stdexcept>

#include "suite/directory/map/directory_map.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/schema/schema.h"

namespace orvo::admin {

using namespace directory;

const std::vector<std::string>& values_of(const EntryData& entry, std::string_view attribute) {
    static const std::vector<std::string> none;
    for (const Attribute& held : entry.attributes)
        if (ascii::equal_ignoring_case(held.name, attribute)) return held.values;
    return none;
}

std::string value_of(const EntryData& entry, std::string_view attribute) {
    const std::vector<std::string>& values = values_of(entry, attribute);
    return values.empty() ? std::string() : values.front();
}

std::optional<Provider> try_provider_of(const SiteSettings& site) {
    if (site.provider == "OrvoDirectory.Embedded") return Provider::embedded;
    if (site.provider == "OrvoDirectory.Ldap") return Provider::ldap;
    return std::nullopt;
}

Provider provider_of(const SiteSettings& site) {
    if (const auto provider = try_provider_of(site)) return *provider;
    throw std::runtime_error(site.file.string() + " names the provider " + site.provider +
                             ": only OrvoDirectory.Ldap and OrvoDirectory.Embedded can be "
                             "looked at");
}

std::string below_root(const SiteSettings& site, const std::string& relative) {
    return to_utf8(container_name(from_utf8(relative + "," + site.root)));
}

std::string entry_below(const SiteSettings& site, const std::string& attribute,
                        const std::string& value, const std::string& container) {
    return to_utf8(
        entry_name(from_utf8(attribute + "=" + value), from_utf8(below_root(site, container))));
}

std::string listed(const std::vector<std::string>& items) {
    constexpr std::size_t most = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(items.size(), most); ++i)
        text += (i > 0 ? ", " : "") + items[i];
    if (items.size() > most) text += " and " + std::to_string(items.size() - most) + " more";
    return text;
}

std::vector<std::string> groups_of(const DirectoryMap& map) {
    std::vector<std::string> groups;
    for (const MappedAttribute& attribute : map.attributes)
        for (const MappedGroup& row : attribute.groups)
            if (std::ranges::count(groups, row.group.name) == 0) groups.push_back(row.group.name);
    return groups;
}

namespace {

std::vector<std::string> named_classes(const SiteSettings& site) {
    std::vector<std::string> names = site.user_classes;
    names.push_back(site.profile_class);
    names.push_back(site.account_class);
    return names;
}

// Those that the product's own entries may have.
std::vector<const AttributeType*> product_attributes() {
    const Schema& product = Schema::of_product();
    std::vector<const AttributeType*> types;
    for (const char* name : {"orvoPerson", "orvoProfile", "orvoAccount"})
        for (const AttributeType* type : product.rules_of(*product.classes.find(name)).allowed)
            if (std::ranges::find(types, type) == types.end()) types.push_back(type);
    std::ranges::sort(types, {}, &AttributeType::name);
    return types;
}

// Of the product's class, but for passwords, which nobody reads.
std::vector<std::string> readable_attributes(const char* object_class) {
    const Schema& product = Schema::of_product();
    std::vector<std::string> names;
    for (const AttributeType* type : product.rules_of(*product.classes.find(object_class)).allowed)
        if (!holds_hashes(type->name()) && !type->is_operational) names.push_back(type->name());
    std::ranges::sort(names);
    return names;
}

}  // namespace

std::vector<ReadEntries> entries_read(const SiteSettings& site) {
    return {{"users", below_root(site, site.users), site.user_classes.front(),
             readable_attributes("orvoPerson")},
            {"profiles", below_root(site, site.profiles), site.profile_class,
             readable_attributes("orvoProfile")},
            {"accounts", below_root(site, site.accounts), site.account_class,
             readable_attributes("orvoAccount")}};
}

Finding finding_of_reading(const SiteSettings& site, const std::string& cannot,
                           const std::string& advice) {
    if (cannot.empty()) return found("the service account can read users, profiles and accounts");
    return failed("The service account cannot read, of " + cannot + ".",
                  advice + quoted_name(site.root) + " and below.");
}

Finding examine_schema(const SiteSettings& site, const AttributeTypes& types,
                       const ObjectClasses& classes, const std::string& advice) {
    std::vector<std::string> missing;
    for (const std::string& name : named_classes(site))
        if (!classes.find(name)) missing.push_back("the class " + name);
    const std::vector<const AttributeType*> attributes = product_attributes();
    for (const AttributeType* type : attributes)
        if (!types.find(type->name())) missing.push_back(type->name());
    if (!missing.empty()) return failed("It lacks " + listed(missing) + ".", advice);
    return found("has the classes of the settings and " + std::to_string(attributes.size()) +
                 " attributes");
}

Finding examine_containers(const SiteSettings& site, DirectoryView& view) {
    struct Row {
        const char* setting;
        std::string name;
    };
    std::vector<Row> rows{{"LDAPRoot", site.root}, {"UserContainer", below_root(site, site.users)}};
    if (!site.map) {
        rows.push_back({"ProfileContainer", below_root(site, site.profiles)});
        rows.push_back({"AccountContainer", below_root(site, site.accounts)});
    }
    if (site.map)
        for (const std::string& group : groups_of(*site.map))
            rows.push_back({"DIRECTORY.MAP.GROUPS", group});
    std::vector<std::string> missing, settings;
    for (const Row& row : rows) {
        if (view.find(row.name)) continue;
        missing.push_back(quoted_name(row.name));
        if (std::ranges::count(settings, row.setting) == 0) settings.push_back(row.setting);
    }
    if (missing.empty() && site.map) {
        const std::size_t groups = groups_of(*site.map).size();
        return found(site.users + " below " + site.root +
                     (groups > 0 ? ", and " + std::to_string(groups) + " groups" : ""));
    }
    if (missing.empty())
        return found(listed({site.users, site.profiles, site.accounts}) + " below " + site.root);
    return failed("There is no " + listed(missing) + ", or it is hidden from the service account.",
                  "Make it, let the service account read it, or correct " + listed(settings) +
                      " in " + site.file.string() + ".");
}

Finding examine_accounts(const SiteSettings& site, DirectoryView& view) {
    std::vector<std::string> missing;
    int there = 0;
    for (int type = 0; type <= 4; ++type) {
        const std::string number = std::to_string(type);
        if (view.find(entry_below(site, site.account_naming_attribute, number, site.accounts)))
            ++there;
        else if (!view.search(below_root(site, site.users), "(OrvoUserType=" + number + ")", 1)
                      .empty())
            missing.push_back(number);
    }
    if (missing.empty())
        return found(std::to_string(there) + (there == 1 ? " account" : " accounts") +
                     ", one for each type that users have");
    return failed(
        "Users of type " + listed(missing) +
            " cannot log in: their account is missing, or hidden from the service account.",
        "Make " + entry_below(site, site.account_naming_attribute, missing.front(), site.accounts) +
            ", with OrvoNTUser and OrvoNTPassword where the site needs them.");
}

Finding examine_administrators(const SiteSettings& site, DirectoryView& view) {
    const auto found_here =
        view.search(below_root(site, site.users),
                    "(&(objectClass=" + site.user_classes.front() + ")(OrvoUserType=4))", 1);
    if (found_here.empty())
        return failed("No user is an administrator.", "Give one the OrvoUserType 4.");
    return found("there is one: " + found_here.front().name);
}

}  // namespace orvo::admin
