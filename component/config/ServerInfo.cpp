#include "component/config/ServerInfo.h"

#include <variant>

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/password_value.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"
#include "platform/values/environment.h"
#include "platform/values/wiped.h"

namespace orvo {

// One key of section "MEMBERSHIP", the field it fills (a text, a list split at ",", or a password)
// and what people are told of it (described_setting.h).
struct ServerInfo::Setting {
    const char16_t* key;
    std::variant<Text ServerInfo::*, Variant ServerInfo::*, Secret ServerInfo::*> field;
    const char* values;
    const char* otherwise;
    const char* about;
};

// In the order in which they are read; the last one is read after the containers are composed.
const ServerInfo::Setting ServerInfo::settings[] = {
    {u"LDAPServer", &ServerInfo::server_name_, "servers, with blanks between; or a file",
     "no directory is found (0x8007203F, 0x80040321)",
     "The directory server, or several in order of preference; of the embedded directory its "
     "file."},
    {u"UserContainer", &ServerInfo::user_container_, "distinguished name, below LDAPRoot",
     "no user can be bound (0x80072032)", "Where users live."},
    {u"ProfileContainer", &ServerInfo::profile_container_, "distinguished name, below LDAPRoot",
     "no profile can be bound, and no user who has one (0x80072032)", "Where profiles live."},
    {u"AccountContainer", &ServerInfo::account_container_, "distinguished name, below LDAPRoot",
     "no user can be bound (0x80072032)", "Where the service accounts for types of users live."},
    {u"UserClass", &ServerInfo::user_classes_, "class names, with commas between",
     "searches fail (9), and users cannot be created (0x80072014)",
     "The object classes of users. The first alone selects users in searches; a new user gets "
     "all."},
    {u"ProfileClass", &ServerInfo::profile_class_, "class name",
     "role searches see the users' own roles alone", "The object class of profiles."},
    {u"AccountClass", &ServerInfo::account_class_, "class name", "an empty text",
     "The object class of service accounts, for programs that ask for it; the component does not."},
    {u"ProfileNamingAttribute", &ServerInfo::profile_naming_attribute_, "attribute",
     "no profile can be bound, and no user who has one (0x80072032)",
     "The attribute that names profiles."},
    {u"UserNamingAttribute", &ServerInfo::user_naming_attribute_, "attribute",
     "no user can be bound (0x80072032), and no password is right",
     "The attribute that names users."},
    {u"AccountNamingAttribute", &ServerInfo::account_naming_attribute_, "attribute",
     "no user can be bound (0x80072032)", "The attribute that names service accounts."},
    {u"UserMandatoryAttributes", &ServerInfo::user_mandatory_attributes_,
     "attributes, with commas between", "none",
     "What every new user has, besides names, GUID and password."},
    {u"MemScriptUser", &ServerInfo::script_user_, "distinguished name, below LDAPRoot",
     "no user can be bound (0x8007052E)",
     "The membership script account: it creates users who register themselves, and reads the "
     "service accounts."},
    {u"MemScriptCode", &ServerInfo::script_code_, "text", "no user can be bound (0x8007052E)",
     "Its password."},
    {u"CookieName", &ServerInfo::cookie_name_, "text",
     "nobody can log in to a web site (0x8004044C)", "The login's cookie."},
    {u"LDAPRoot", &ServerInfo::root_, "distinguished name",
     "there are no containers: no user can be bound (0x80040321)",
     "The name under which everything lies."},
    {u"ConfigFileName", &ServerInfo::configuration_file_name_, "file name",
     "BindToConfig fails (75)",
     "The file of [ConfigDN] and [Attributes], in the folder Config beside the site's file."},
    {u"PlugableModuleImplementation", &ServerInfo::provider_implementation_, "ProgID",
     "no directory is found (91)",
     "The directory provider: OrvoDirectory.Embedded, OrvoDirectory.Ldap or one's own."},
};

namespace {

bool is_filled(const Variant& list) { return list.is_array(); }
bool is_filled(const auto& text) { return !text.empty(); }

template <class T>
T read_as(Variant value) {
    return value.to<T>();
}
template <>
Variant read_as<Variant>(Variant value) {
    Values list;
    for (const Text& piece : split(value.to<Text>(), u",")) list.push_back(piece);
    return list;
}
template <>
Secret read_as<Secret>(Variant value) {
    return Wiped(std::move(value)).value.to<Secret>();
}

}  // namespace

std::vector<DescribedSetting> ServerInfo::described_settings() {
    std::vector<DescribedSetting> all;
    for (const Setting& setting : settings)
        all.push_back({to_utf8(setting.key), setting.values, setting.otherwise, setting.about});
    return all;
}

void ServerInfo::CheckState() {
    if (!is_loaded_ && configuration_path_.empty() && this == shared_server_info() &&
        environment_variable("ORVO_SITE_BY_DEFAULT") == u"1")
        return load_site_configuration();
    // Without a pending error this neither logs nor raises: who asks before anything was loaded
    // gets the empty value, which User::BindAs and PMMCreator test for.
    if (!is_loaded_)
        HandleError(u"OrvoMembership.ServerInfo.CheckState",
                    u"Configuration information was not loaded in memory.");
}

Variant ServerInfo::GetMemScriptUser() { return script_user(); }
Variant ServerInfo::GetMemScriptCode() { return password_value(script_code()); }
Variant ServerInfo::GetServerName() { return server_name(); }
Variant ServerInfo::GetPMMImplementation() { return provider_implementation(); }
Variant ServerInfo::GetProfileContainer() { return profile_container(); }
Variant ServerInfo::GetUserContainer() { return user_container(); }
Variant ServerInfo::GetAccountContainer() { return account_container(); }
Variant ServerInfo::GetCookieName() { return cookie_name(); }
Variant ServerInfo::GetProfileClass() { return profile_class(); }
Variant ServerInfo::GetUserClass() { return checked(user_classes_); }
Variant ServerInfo::GetAccountClass() { return checked(account_class_); }
Variant ServerInfo::GetUserNamingAttribute() { return user_naming_attribute(); }
Variant ServerInfo::GetProfileNamingAttribute() { return profile_naming_attribute(); }
Variant ServerInfo::GetAccountNamingAttribute() { return account_naming_attribute(); }
Variant ServerInfo::GetUserMandatoryAttributes() { return checked(user_mandatory_attributes_); }
Text ServerInfo::first_user_class() { return element(GetUserClass(), 0).to<Text>(); }
Variant ServerInfo::GetConfigFileName() { return configuration_file_name(); }
Text ServerInfo::ConfigurationPath() { return configuration_path_; }

void ServerInfo::fill(const Setting& setting, const Ref<Configuration>& configuration) {
    std::visit(
        [&]<class T>(T ServerInfo::*field) {
            T& filled = this->*field;
            if (is_filled(filled)) return;
            Text section = u"MEMBERSHIP";
            Text key = setting.key;
            filled = read_as<T>(call<&Configuration::ReadConfigValue>(configuration, section, key));
        },
        setting.field);
}

void ServerInfo::LoadConfigFile(Ref<Configuration>& i_oConfiguration) {
    const auto info_line = [] { return u"Couldn't read a configuration value"; };
    trapped_with_info(u"OrvoMembership.ServerInfo.LoadConfig", info_line, [&] {
        is_loaded_ = false;
        const std::span all(settings);
        for (const Setting& setting : all.first(all.size() - 1)) fill(setting, i_oConfiguration);
        if (!root_.empty()) {
            full_user_container_ = user_container_ + u"," + root_;
            full_profile_container_ = profile_container_ + u"," + root_;
            full_account_container_ = account_container_ + u"," + root_;
            full_script_user_ = script_user_ + u"," + root_;
        }
        fill(all.back(), i_oConfiguration);
        is_loaded_ = true;
    });
}

void ServerInfo::SetConfiguration(Text& i_sConfigPath) {
    // From here on the site's own configuration is not what was meant, whether this one can be
    // loaded or not.
    configuration_path_ = i_sConfigPath;
    auto configuration = Gen_GetComponent<Configuration>(u"Quendra.Configuration");
    call<&Configuration::LoadConfigurationFile>(configuration, i_sConfigPath);
    LoadConfigFile(configuration);
}

template struct detail::callee<ServerInfo>;

}  // namespace orvo
