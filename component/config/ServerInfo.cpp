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
// and what it is for.
struct ServerInfo::Setting {
    const char16_t* key;
    std::variant<Text ServerInfo::*, Variant ServerInfo::*, Secret ServerInfo::*> field;
    const char* about;
};

// In the order in which they are read; the last one is read after the containers are composed.
const ServerInfo::Setting ServerInfo::settings[] = {
    {u"LDAPServer", &ServerInfo::server_name_,
     "The directory server, or several with blanks between them; of the embedded directory its "
     "file."},
    {u"UserContainer", &ServerInfo::user_container_, "Where users live, below LDAPRoot."},
    {u"ProfileContainer", &ServerInfo::profile_container_, "Where profiles live, below LDAPRoot."},
    {u"AccountContainer", &ServerInfo::account_container_,
     "Where the service accounts for types of users live, below LDAPRoot."},
    {u"UserClass", &ServerInfo::user_classes_,
     "The object classes of users. The first alone selects users in searches; a new user gets "
     "all."},
    {u"ProfileClass", &ServerInfo::profile_class_, "The object class of profiles."},
    {u"AccountClass", &ServerInfo::account_class_, "The object class of service accounts."},
    {u"ProfileNamingAttribute", &ServerInfo::profile_naming_attribute_,
     "The attribute that names profiles."},
    {u"UserNamingAttribute", &ServerInfo::user_naming_attribute_,
     "The attribute that names users."},
    {u"AccountNamingAttribute", &ServerInfo::account_naming_attribute_,
     "The attribute that names service accounts."},
    {u"UserMandatoryAttributes", &ServerInfo::user_mandatory_attributes_,
     "What every new user has, besides names, GUID and password."},
    {u"MemScriptUser", &ServerInfo::script_user_,
     "The membership script account, below LDAPRoot: it creates users who register themselves, and "
     "reads the service accounts."},
    {u"MemScriptCode", &ServerInfo::script_code_, "Its password."},
    {u"CookieName", &ServerInfo::cookie_name_,
     "The login's cookie. Without one nobody can log in to a web site."},
    {u"LDAPRoot", &ServerInfo::root_,
     "The name under which everything lies. Without it there are no containers."},
    {u"ConfigFileName", &ServerInfo::configuration_file_name_,
     "The file of [ConfigDN] and [Attributes], in the folder Config beside the site's file."},
    {u"PlugableModuleImplementation", &ServerInfo::provider_implementation_,
     "The directory provider's ProgID: OrvoDirectory.Embedded, OrvoDirectory.Ldap or one's own."},
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
    for (const Setting& setting : settings) {
        const bool is_list = std::holds_alternative<Variant ServerInfo::*>(setting.field);
        all.push_back({to_utf8(setting.key), is_list ? "texts, with commas between" : "text", "",
                       setting.about});
    }
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
