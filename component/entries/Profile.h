#pragma once

#include "component/config/DirectoryAccount.h"
#include "platform/interfaces/hosted.h"
#include "platform/objects/context/object_control.h"

namespace orvo {

// One profile entry: a named bundle of settings that users point to. Bind it (BindAs, or Init with
// the best credentials at hand) before anything is read or written; on an unbound profile that
// fails with 91 (object not set).
//
// Used by the thread that made it. In a web page it holds the session from its making on. What
// fails is logged and raised again by the member that was called.
class Profile final : public ObjectControl {
public:
    Profile() { IObjectControl_Activate(); }
    ~Profile() { IObjectControl_Deactivate(); }

    // The attribute's whole value, as the provider gives it.
    Variant GetAttribValue(Text& iAttribName);
    void SetAttribValue(Text& iAttribName, Variant& iAttribValue);
    void ClearAttribValue(Text& iAttribName);
    void BindAs(Text& iCN, Text& iUsername, Secret& iPwd);
    // The users of this profile; those whose local-administration profile it is, where it has none.
    // At most 1000. A record set with the user naming attribute as its column. An apostrophe in the
    // profile's name is doubled in the filter, for providers that quote the value, and nothing else
    // is escaped; one that takes the filter as it stands finds nobody for such a profile.
    Object GetUsers();
    void ClearOrvoApps();
    bool HasRole(std::int16_t& iRoleID);
    // Adds the role at the end of the list, or removes it wherever it stands.
    void AssignRole(std::int16_t& iRoleType, bool& iEnable);
    void setServerInfo(const Text& i_sConfigurationPath);
    // Binds with the credentials of the last BindAs or else of the web session. Without either it
    // returns quietly and the profile stays unbound.
    void Init(Text& iCN);

    Text CN();
    std::int16_t Locale();
    void put_Locale(std::int16_t value);
    Text LanguageID();
    // An empty text removes the attribute.
    void put_LanguageID(const Text& value);
    // Properties whose value is the attribute's whole value, by name.
    struct WholeValue {
        const char* name;
        const char16_t* attribute;
    };
    static constexpr WholeValue catalog_ids{"OrvoCatalogIDs", u"OrvoCatalogIDs"};
    static constexpr WholeValue dashboard_ids{"OrvoDashboardIDs", u"OrvoDashboardIDs"};
    static constexpr WholeValue askbook_visibility{"AskbookVisibility", u"AskbookVisibility"};
    static constexpr WholeValue roles{"Roles", u"OrvoRole"};
    template <const WholeValue& property>
    Variant get_whole() {
        return whole(property);
    }
    template <const WholeValue& property>
    void put_whole(const Variant& value) {
        set_whole(property, value);
    }
    Variant OrvoApps();
    void put_OrvoApps(const Variant& iApps);

    void IObjectControl_Activate() override;
    void IObjectControl_Deactivate() override {}
    bool IObjectControl_CanBePooled() override { return false; }

private:
    Variant values(const char16_t* attribute);
    void set_values(const char16_t* attribute, Variant value);
    Variant whole(const WholeValue& property);
    void set_whole(const WholeValue& property, const Variant& value);
    void write_apps();
    Object search_users(const char16_t* attribute);

    PMMCreator m_oPMMCreator;
    Ref<DirectoryEntry> m_oPMMObject;
    DirectoryAccount m_account;
    Object m_oSession;
    Variant m_vApps;
};

// clang-format off
template <>
inline constexpr auto table_of<Profile> = describe<Profile>(
    "IProfile", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e716",
    about("A profile: settings that users have in common."),
    method<&Profile::GetAttribValue>("GetAttribValue", "iAttribName")
        .help("All values of an attribute."),
    method<&Profile::SetAttribValue>("SetAttribValue", "iAttribName", "iAttribValue")
        .help("Writes an attribute."),
    method<&Profile::ClearAttribValue>("ClearAttribValue", "iAttribName")
        .help("Removes an attribute."),
    method<&Profile::BindAs>("BindAs", "iCN", "iUsername", "iPwd")
        .help("Binds to a profile with the rights of a user."),
    method<&Profile::GetUsers>("GetUsers")
        .help("The profile's users, at most 1000, as a record set. Where it has none, those who "
              "have it for local administration."),
    method<&Profile::ClearOrvoApps>("ClearOrvoApps").help("Removes the profile's applications."),
    method<&Profile::HasRole>("HasRole", "iRoleID").help("Whether the profile has a role."),
    method<&Profile::AssignRole>("AssignRole", "iRoleType", "iEnable")
        .help("Grants or withdraws a role."),
    method<&Profile::setServerInfo>("setServerInfo", "i_sConfigurationPath")
        .help("Loads a site configuration file into the settings that all objects of the thread "
              "share."),
    method<&Profile::Init>("Init", "iCN")
        .help("Binds with the credentials of the last bind or else of the web session; without "
              "either it stays unbound."),
    get<&Profile::CN>("CN").help("The common name."),
    get<&Profile::Locale>("Locale").help("The number of the profile's locale."),
    put<&Profile::put_Locale>("Locale", "iLocale"),
    get<&Profile::LanguageID>("LanguageID").help("The profile's language."),
    put<&Profile::put_LanguageID>("LanguageID", "iLanguageID"),
    get<&Profile::get_whole<Profile::catalog_ids>>(Profile::catalog_ids.name)
        .help("The profile's catalogues, as an array."),
    put<&Profile::put_whole<Profile::catalog_ids>>(Profile::catalog_ids.name, "iCatalogIDs"),
    get<&Profile::get_whole<Profile::dashboard_ids>>(Profile::dashboard_ids.name)
        .help("The profile's dashboards, as an array."),
    put<&Profile::put_whole<Profile::dashboard_ids>>(Profile::dashboard_ids.name, "iDashboardIDs"),
    get<&Profile::get_whole<Profile::askbook_visibility>>(Profile::askbook_visibility.name)
        .help("The attribute AskbookVisibility, as an array."),
    put<&Profile::put_whole<Profile::askbook_visibility>>(Profile::askbook_visibility.name,
                                                          "iVisibility"),
    get<&Profile::OrvoApps>("OrvoApps").help("The profile's applications, as an array."),
    put<&Profile::put_OrvoApps>("OrvoApps", "iApps"),
    get<&Profile::get_whole<Profile::roles>>(Profile::roles.name)
        .help("The profile's roles, as an array."),
    put<&Profile::put_whole<Profile::roles>>(Profile::roles.name, "iRoles"));
// clang-format on

extern template struct detail::callee<Profile>;

template <>
inline constexpr auto class_of<Profile> = describe_class<Profile, ObjectControl>(
    "OrvoMembership.Profile", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e706");

}  // namespace orvo
