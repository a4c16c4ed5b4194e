#include "component/config/ServerInfo.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "platform/abi/call.h"

namespace orvo {

// One key of section "MEMBERSHIP" and the field it fills: a text, or a list split at ",".
struct ServerInfo::Setting {
    const char16_t* key;
    Text ServerInfo::*text = nullptr;
    Variant ServerInfo::*list = nullptr;
};

// In the order in which they are read; the last one is read after the containers are composed.
const ServerInfo::Setting ServerInfo::settings[] = {
    {u"LDAPServer", &ServerInfo::server_name_},
    {u"UserContainer", &ServerInfo::user_container_},
    {u"ProfileContainer", &ServerInfo::profile_container_},
    {u"AccountContainer", &ServerInfo::account_container_},
    {u"UserClass", nullptr, &ServerInfo::user_classes_},
    {u"ProfileClass", &ServerInfo::profile_class_},
    {u"AccountClass", &ServerInfo::account_class_},
    {u"ProfileNamingAttribute", &ServerInfo::profile_naming_attribute_},
    {u"UserNamingAttribute", &ServerInfo::user_naming_attribute_},
    {u"AccountNamingAttribute", &ServerInfo::account_naming_attribute_},
    {u"UserMandatoryAttributes", nullptr, &ServerInfo::user_mandatory_attributes_},
    {u"MemScriptUser", &ServerInfo::script_user_},
    {u"MemScriptCode", &ServerInfo::script_code_},
    {u"CookieName", &ServerInfo::cookie_name_},
    {u"LDAPRoot", &ServerInfo::root_},
    {u"ConfigFileName", &ServerInfo::configuration_file_name_},
    {u"PlugableModuleImplementation", &ServerInfo::provider_implementation_},
};

void ServerInfo::CheckState() {
    // No error is pending here, so this neither logs nor raises: a getter on an object that was not
    // loaded answers its empty value. Deliberate.
    if (!is_loaded_)
        HandleError(u"OrvoMembership.ServerInfo.CheckState",
                    u"Configuration information was not loaded in memory.");
}

template <class T>
Variant ServerInfo::checked(const T& field) {
    CheckState();
    return field;
}

Variant ServerInfo::GetMemScriptUser() { return checked(full_script_user_); }
Variant ServerInfo::GetMemScriptCode() { return checked(script_code_); }
Variant ServerInfo::GetServerName() { return checked(server_name_); }
Variant ServerInfo::GetPMMImplementation() { return checked(provider_implementation_); }
Variant ServerInfo::GetProfileContainer() { return checked(full_profile_container_); }
Variant ServerInfo::GetUserContainer() { return checked(full_user_container_); }
Variant ServerInfo::GetAccountContainer() { return checked(full_account_container_); }
Variant ServerInfo::GetCookieName() { return checked(cookie_name_); }
Variant ServerInfo::GetProfileClass() { return checked(profile_class_); }
Variant ServerInfo::GetUserClass() { return checked(user_classes_); }
Variant ServerInfo::GetAccountClass() { return checked(account_class_); }
Variant ServerInfo::GetUserNamingAttribute() { return checked(user_naming_attribute_); }
Variant ServerInfo::GetProfileNamingAttribute() { return checked(profile_naming_attribute_); }
Variant ServerInfo::GetAccountNamingAttribute() { return checked(account_naming_attribute_); }
Variant ServerInfo::GetUserMandatoryAttributes() { return checked(user_mandatory_attributes_); }
Variant ServerInfo::GetConfigFileName() { return checked(configuration_file_name_); }
Text ServerInfo::ConfigurationPath() { return configuration_path_; }

void ServerInfo::fill(const Setting& setting, const Ref<Configuration>& configuration) {
    const bool is_filled =
        setting.text != nullptr ? !(this->*setting.text).empty() : (this->*setting.list).is_array();
    if (is_filled) return;
    Text section = u"MEMBERSHIP";
    Text key = setting.key;
    Text value = call<&Configuration::ReadConfigValue>(configuration, section, key).to<Text>();
    if (setting.text != nullptr) {
        this->*setting.text = std::move(value);
        return;
    }
    Values list;
    for (Text& piece : split(value, u",")) list.push_back(std::move(piece));
    this->*setting.list = std::move(list);
}

void ServerInfo::LoadConfigFile(Ref<Configuration>& i_oConfiguration) {
    trapped(u"OrvoMembership.ServerInfo.LoadConfig", u"Couldn't read a configuration value", [&] {
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
    auto configuration = Gen_GetComponent<Configuration>(u"Quendra.Configuration");
    call<&Configuration::LoadConfigurationFile>(configuration, i_sConfigPath);
    LoadConfigFile(configuration);
    configuration_path_ = i_sConfigPath;
}

}  // namespace orvo
