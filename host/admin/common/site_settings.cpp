#include "host/admin/common/site_settings.h"

#include <stdexcept>

#include "suite/configuration/ini_files.h"
#include "suite/configuration/suite_configuration.h"
#include "suite/directory/map/map_reader.h"

namespace orvo::admin {
namespace {

std::string read(const SiteSettings& site, const IniValues& values, TextView key) {
    const Text* value = values.find(u"MEMBERSHIP", key);
    if (!value || value->empty())
        throw std::runtime_error(site.file.string() + " does not say " + to_utf8(key) +
                                 " in [MEMBERSHIP]");
    return to_utf8(*value);
}

std::shared_ptr<const directory::DirectoryMap> map_of(const std::filesystem::path& file,
                                                      const IniValues& values) {
    const Text* provider = values.find(u"MEMBERSHIP", u"PlugableModuleImplementation");
    if (!provider || *provider != u"OrvoDirectory.Ldap") return nullptr;
    return directory::read_map(file, values);
}

}  // namespace

std::filesystem::path site_file(const std::filesystem::path& given) {
    const std::filesystem::path file =
        std::filesystem::absolute(given.empty() ? usual_site_file() : given);
    if (std::filesystem::exists(file)) return file;
    throw std::runtime_error(file.string() +
                             ": there are no settings of a site; name them with --site, or make "
                             "them with orvo init");
}

SiteSettings read_site_settings(const std::filesystem::path& file) {
    const std::shared_ptr<const IniValues> values = load_ini_file(file);
    SiteSettings site;
    site.file = file;
    const auto of = [&](TextView key) { return read(site, *values, key); };
    site.provider = of(u"PlugableModuleImplementation");
    site.map = map_of(file, *values);
    site.server = of(u"LDAPServer");
    site.root = of(u"LDAPRoot");
    site.users = of(u"UserContainer");
    site.profiles = of(u"ProfileContainer");
    site.accounts = of(u"AccountContainer");
    site.service = of(u"MemScriptUser");
    site.service_code = of(u"MemScriptCode");
    for (const Text& name : split(from_utf8(of(u"UserClass")), u","))
        site.user_classes.push_back(to_utf8(trimmed(name)));
    site.profile_class = of(u"ProfileClass");
    site.account_class = of(u"AccountClass");
    site.naming_attribute = of(u"UserNamingAttribute");
    site.profile_naming_attribute = of(u"ProfileNamingAttribute");
    site.account_naming_attribute = of(u"AccountNamingAttribute");
    return site;
}

bool has_map(const std::filesystem::path& file) {
    return map_of(file, *load_ini_file(file)) != nullptr;
}

}  // namespace orvo::admin
