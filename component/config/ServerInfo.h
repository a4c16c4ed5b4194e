#pragma once

// The directory settings of the membership layer, read once and handed out.

#include "component/config/configuration_contract.h"
#include "platform/interfaces/hosted.h"
#include "platform/values/described_setting.h"
#include "platform/values/secret.h"
#include "platform/values/values.h"

namespace orvo {

// Which directory server to use, where users, profiles and accounts live, which classes and naming
// attributes they have, and how the provider is implemented: section "MEMBERSHIP" of the site's
// configuration. Texts are the configuration's own, neither trimmed nor checked.
//
// A getter on an object that was not loaded answers its empty value and raises nothing. Loading
// raises what the configuration raised; what was read before that stays. Used by one thread;
// nothing of a configuration is held after loading.
class ServerInfo {
public:
    Variant GetMemScriptUser();
    Variant GetMemScriptCode();
    Variant GetServerName();
    Variant GetPMMImplementation();
    // The containers are full names: the configured one, "," and the root. Without a root they are
    // empty, whatever is configured.
    Variant GetProfileContainer();
    Variant GetUserContainer();
    Variant GetAccountContainer();
    Variant GetCookieName();
    Variant GetProfileClass();
    // Array of texts; Empty before anything was loaded. So is GetUserMandatoryAttributes.
    Variant GetUserClass();
    Variant GetAccountClass();
    Variant GetUserNamingAttribute();
    Variant GetProfileNamingAttribute();
    Variant GetAccountNamingAttribute();
    Variant GetUserMandatoryAttributes();

    // The distinguished name of a user below the user container; a bare name gets the user naming
    // attribute in front. Nothing is escaped.
    Text FullUserPath(Text& iUser);
    // "LDAP://host/object,container". iHost loses its scheme and one "/" at its end, and a bare
    // iObject gets the user naming attribute, in the caller's variables too. A container written
    // from the top down with "/" is turned round. Nothing is escaped.
    Text makeLDAPString(Text& iHost, Text& iContainer, Text& iObject);

    // Fills every field that is still empty. A value that was loaded before is never replaced.
    void LoadConfigFile(Ref<Configuration>& i_oConfiguration);
    // The same from a site configuration file.
    void SetConfiguration(Text& i_sConfigPath);
    Variant GetConfigFileName();
    // The path last given to SetConfiguration, also one that could not be loaded; the object's
    // default value.
    Text ConfigurationPath();

    bool IsLoaded() const { return is_loaded_; }
    // The keys of section "MEMBERSHIP".
    static std::vector<DescribedSetting> described_settings();

    // What the getters of one text answer, for the component itself.
    const Text& script_user() { return checked(full_script_user_); }
    const Secret& script_code() { return checked(script_code_); }
    const Text& server_name() { return checked(server_name_); }
    const Text& provider_implementation() { return checked(provider_implementation_); }
    const Text& profile_container() { return checked(full_profile_container_); }
    const Text& user_container() { return checked(full_user_container_); }
    const Text& account_container() { return checked(full_account_container_); }
    const Text& cookie_name() { return checked(cookie_name_); }
    // The first of the user's classes. Raises 13 before anything was loaded, 9 where none is
    // configured.
    Text first_user_class();
    const Text& profile_class() { return checked(profile_class_); }
    const Text& user_naming_attribute() { return checked(user_naming_attribute_); }
    const Text& profile_naming_attribute() { return checked(profile_naming_attribute_); }
    const Text& account_naming_attribute() { return checked(account_naming_attribute_); }
    const Text& configuration_file_name() { return checked(configuration_file_name_); }

private:
    struct Setting;
    static const Setting settings[];

    void CheckState();
    template <class T>
    const T& checked(const T& field) {
        CheckState();
        return field;
    }
    void fill(const Setting& setting, const Ref<Configuration>& configuration);

    Text server_name_;
    Text user_container_;
    Text profile_container_;
    Text account_container_;
    Variant user_classes_;
    Text profile_class_;
    Text account_class_;
    Text profile_naming_attribute_;
    Text user_naming_attribute_;
    Text account_naming_attribute_;
    Variant user_mandatory_attributes_;
    Text script_user_;
    Secret script_code_;
    Text cookie_name_;
    Text root_;
    Text configuration_file_name_;
    Text provider_implementation_;
    Text full_user_container_;
    Text full_profile_container_;
    Text full_account_container_;
    Text full_script_user_;
    Text configuration_path_;
    bool is_loaded_ = false;
};

// clang-format off
template <>
inline constexpr auto table_of<ServerInfo> = describe<ServerInfo>(
    "IServerInfo", "19041d22-35a4-4296-862c-dd49911e25a9",
    about("The directory settings of a site."),
    method<&ServerInfo::GetMemScriptUser>("GetMemScriptUser")
        .help("The full name of the membership script account."),
    method<&ServerInfo::GetMemScriptCode>("GetMemScriptCode")
        .help("The password of the membership script account."),
    method<&ServerInfo::GetServerName>("GetServerName").help("The directory server."),
    method<&ServerInfo::GetPMMImplementation>("GetPMMImplementation")
        .help("The ProgID of the directory provider."),
    method<&ServerInfo::GetProfileContainer>("GetProfileContainer")
        .help("The full name of the profiles' container."),
    method<&ServerInfo::GetUserContainer>("GetUserContainer")
        .help("The full name of the users' container."),
    method<&ServerInfo::GetAccountContainer>("GetAccountContainer")
        .help("The full name of the service accounts' container."),
    method<&ServerInfo::GetCookieName>("GetCookieName").help("The name of the login cookie."),
    method<&ServerInfo::GetProfileClass>("GetProfileClass").help("The object class of profiles."),
    method<&ServerInfo::GetUserClass>("GetUserClass")
        .help("The object classes of users, as an array."),
    method<&ServerInfo::GetAccountClass>("GetAccountClass")
        .help("The object class of service accounts."),
    method<&ServerInfo::GetUserNamingAttribute>("GetUserNamingAttribute")
        .help("The attribute that names users."),
    method<&ServerInfo::GetProfileNamingAttribute>("GetProfileNamingAttribute")
        .help("The attribute that names profiles."),
    method<&ServerInfo::GetAccountNamingAttribute>("GetAccountNamingAttribute")
        .help("The attribute that names service accounts."),
    method<&ServerInfo::GetUserMandatoryAttributes>("GetUserMandatoryAttributes")
        .help("What every new user must have, as an array."),
    method<&ServerInfo::FullUserPath>("FullUserPath", "iUser")
        .help("The distinguished name of a user; a bare name gets the naming attribute in "
              "front."),
    method<&ServerInfo::makeLDAPString>("makeLDAPString", "iHost", "iContainer",
                                        optional("iObject"))
        .help("The directory URL of an object in a container. Host and object are left as they stand "
              "in it."),
    method<&ServerInfo::LoadConfigFile>("LoadConfigFile", "i_oConfiguration")
        .help("Fills what is still empty from a configuration."),
    method<&ServerInfo::SetConfiguration>("SetConfiguration", "i_sConfigPath")
        .help("Fills what is still empty from a site file."),
    method<&ServerInfo::GetConfigFileName>("GetConfigFileName")
        .help("The configured name of the configuration file."),
    get<&ServerInfo::ConfigurationPath>("ConfigurationPath").as_default().hidden()
        .help("The path last given to SetConfiguration."));
// clang-format on

extern template struct detail::callee<ServerInfo>;

template <>
inline constexpr auto class_of<ServerInfo> =
    describe_class<ServerInfo>("OrvoMembership.ServerInfo", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e701");

}  // namespace orvo
