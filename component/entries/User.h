#pragma once

#include "component/config/Account.h"
#include "component/entries/Profile.h"
#include "component/entries/UserCatalogue.h"
#include "platform/interfaces/crossing.h"
#include "platform/objects/context/object_control.h"
#include "platform/objects/dictionary/dictionary_contract.h"

namespace orvo {

namespace detail {

template <PropertyType type>
struct property_value;
template <>
struct property_value<PropertyType::text> : std::type_identity<Text> {};
template <>
struct property_value<PropertyType::boolean> : std::type_identity<bool> {};
template <>
struct property_value<PropertyType::int16> : std::type_identity<std::int16_t> {};
template <>
struct property_value<PropertyType::int32> : std::type_identity<std::int32_t> {};
template <>
struct property_value<PropertyType::currency> : std::type_identity<Currency> {};
template <>
struct property_value<PropertyType::date> : std::type_identity<Date> {};
template <>
struct property_value<PropertyType::whole> : std::type_identity<Variant> {};

template <std::size_t row>
using property_t = typename property_value<user_catalogue[row].type>::type;

// What a property's setter takes: most take it in, a few in-out.
template <std::size_t row>
using property_argument = std::conditional_t<user_catalogue[row].rule == PropertyRule::in_out,
                                             property_t<row>&, const property_t<row>&>;

}  // namespace detail

// One user entry. Bind it first: by its common name (BindAs), or by the web session at activation.
// On an unbound user attributes and properties fail with 91 (object not set). A further bind
// replaces the former one, but keeps the profile that it holds where the new user's has the same
// name.
//
// What was done before a failure stays done: a bind that the directory refuses leaves the new name
// and credentials in place. What fails is logged and raised again by each member that it passes
// through.
//
// Used by the thread that made it. It holds its entry, its profile and, in a web page, the session
// until it is deactivated.
class User final : public ObjectControl {
public:
    User() { IObjectControl_Activate(); }
    ~User() { IObjectControl_Deactivate(); }

    // Binding.
    void BindAs(Text& iCommonName, Text& iUsername, Secret& iPwd);
    // The user whose OrvoGUID this is: finds the common name, then binds by it. Raises 3021 (no
    // current record) for a GUID that nobody has.
    void BindToGuid(Text& iGUID, Text& iUsername, Secret& iPassword);
    void setServerInfo(const Text& i_sConfigurationPath);

    // Attributes, by the directory's names, as the provider gives and takes them. A read or write
    // that the privilege lists refuse returns quietly, a read with empty text. Clearing is never
    // refused. A restricted user object that has read an attribute goes on answering that value
    // after it was cleared, until the next bind.
    Variant GetAttribValue(Text& iAttribName);
    void SetAttribValue(Text& iAttribName, Variant& iAttribValue);
    void ClearAttribValue(Text& iAttribName);

    // The catalogue's properties; `row` is one of user_catalogue.
    template <std::size_t row>
    detail::property_t<row> get_property();
    template <std::size_t row>
    void put_property(detail::property_argument<row> iValue);

    // Computed properties.
    Text CN();
    Text GUID();
    Ref<Profile> get_Profile();
    Text NTUser();
    Secret NTPassword();
    template <std::size_t row>
    bool get_user_type();
    template <std::size_t row>
    void put_user_type(bool iValue);
    bool InvoiceUser();
    void put_InvoiceUser(bool iValue);

    // Roles and applications.
    template <std::size_t row>
    bool get_role();
    template <std::size_t row>
    void put_role(bool iValue);
    // The profile's roles answer for a user who has none of its own.
    bool HasRole(std::int16_t& iRoleID);
    // Never looks at the profile. A list that loses its only role is left with the single element
    // 0.
    void AssignRole(std::int16_t& iRoleType, bool& iEnable);
    Variant OrvoApps();
    void put_OrvoApps(Variant& iApps);
    void ClearOrvoApps();
    // Both answer true, whatever they are asked.
    bool IsAppAccessAllowed(const Text& iAppName);
    bool validate();
    // Raises emErrAppNoAccess when the application is not among the user's; an unbound user passes.
    void CheckAppUserAccess(const Text& iAppName, std::int16_t iAppID);
    // An entry has room for one address, which serves every application: i_lAppID is ignored.
    Variant SetDefaultURL(std::int32_t i_lAppID, const Text& i_sURL);
    Text GetDefaultURL(std::int32_t i_lAppID);

    // Raises emErrPwdNotCorrect when the old password is refused; does nothing on an unbound user.
    void ChangePassword(Secret& iOldPwd, Secret& iNewPwd);

    void IObjectControl_Activate() override;
    void IObjectControl_Deactivate() override;
    bool IObjectControl_CanBePooled() override { return false; }

private:
    void CheckPrivs();
    void bind_profile(Text& user, Secret& password);
    void save_apps();
    bool holds_role(std::int16_t role);

    Variant read_property(const UserProperty& property);
    void write_property(const UserProperty& property, const Variant& value);
    Text text_of(const char16_t* attribute);
    bool is_of_type(const UserTypeProperty& property);
    void make_type(const UserTypeProperty& property);
    bool has_role_of(const RoleProperty& property);
    void assign_role_of(const RoleProperty& property, bool enable);

    Ref<DirectoryEntry> directory_object_;
    Object session_;
    Ref<Profile> profile_;
    Ref<Account> account_;
    std::optional<PMMCreator> factory_;
    bool profile_changed_ = false;
    Text cn_;
    DirectoryAccount bound_by_;
    Ref<Dictionary> readable_attributes_;
    Ref<Dictionary> writable_attributes_;
    Variant applications_;
};

template <std::size_t row>
detail::property_t<row> User::get_property() {
    return crossing<detail::property_t<row>>::from_late(read_property(user_catalogue[row]));
}
template <std::size_t row>
void User::put_property(detail::property_argument<row> iValue) {
    write_property(user_catalogue[row], Variant(iValue));
}
template <std::size_t row>
bool User::get_user_type() {
    return is_of_type(user_types[row]);
}
template <std::size_t row>
void User::put_user_type(bool) {
    make_type(user_types[row]);
}
template <std::size_t row>
bool User::get_role() {
    return has_role_of(user_roles[row]);
}
template <std::size_t row>
void User::put_role(bool iValue) {
    assign_role_of(user_roles[row], iValue);
}

}  // namespace orvo
