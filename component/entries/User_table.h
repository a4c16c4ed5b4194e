#pragma once

// The table of User's interface. Its order is binary interface: binding, attributes, the catalogue
// in its order, computed properties, roles and applications, password.

#include "component/entries/User.h"

namespace orvo {

namespace detail {

// Each property has two rows, its getter's and its setter's; `place` counts them.
template <std::size_t place>
constexpr auto property_place() {
    constexpr std::size_t row = place / 2;
    if constexpr (place % 2 == 0)
        return get<&User::get_property<row>>(user_catalogue[row].name);
    else
        return put<&User::put_property<row>>(user_catalogue[row].name, "iValue");
}
template <std::size_t place>
constexpr auto user_type_place() {
    constexpr std::size_t row = place / 2;
    if constexpr (place % 2 == 0)
        return get<&User::get_user_type<row>>(user_types[row].name);
    else
        return put<&User::put_user_type<row>>(user_types[row].name, "iValue");
}
template <std::size_t place>
constexpr auto role_place() {
    constexpr std::size_t row = place / 2;
    if constexpr (place % 2 == 0)
        return get<&User::get_role<row>>(user_roles[row].name);
    else
        return put<&User::put_role<row>>(user_roles[row].name, "iValue");
}

template <std::size_t... place>
constexpr auto property_rows(std::index_sequence<place...>) {
    return group(property_place<place>()...);
}
template <std::size_t... place>
constexpr auto user_type_rows(std::index_sequence<place...>) {
    return group(user_type_place<place>()...);
}
template <std::size_t... place>
constexpr auto role_rows(std::index_sequence<place...>) {
    return group(role_place<place>()...);
}

}  // namespace detail

// clang-format off
template <>
inline constexpr auto table_of<User> = describe<User>(
    "IUser", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e717",
    method<&User::BindAs>("BindAs", "iCommonName", "iUsername", "iPwd"),
    method<&User::BindToGuid>("BindToGuid", "iGUID", "iUsername", "iPassword"),
    method<&User::setServerInfo>("setServerInfo", "i_sConfigurationPath"),

    method<&User::GetAttribValue>("GetAttribValue", "iAttribName"),
    method<&User::SetAttribValue>("SetAttribValue", "iAttribName", "iAttribValue"),
    method<&User::ClearAttribValue>("ClearAttribValue", "iAttribName"),

    detail::property_rows(std::make_index_sequence<2 * std::size(user_catalogue)>()),

    get<&User::CN>("CN"),
    get<&User::GUID>("GUID"),
    get<&User::get_Profile>("Profile"),
    get<&User::NTUser>("NTUser"),
    get<&User::NTPassword>("NTPassword"),
    detail::user_type_rows(std::make_index_sequence<2 * std::size(user_types)>()),
    get<&User::InvoiceUser>("InvoiceUser"),
    put<&User::put_InvoiceUser>("InvoiceUser", "iValue"),

    detail::role_rows(std::make_index_sequence<2 * std::size(user_roles)>()),
    method<&User::HasRole>("HasRole", "iRoleID"),
    method<&User::AssignRole>("AssignRole", "iRoleType", "iEnable"),
    get<&User::OrvoApps>("OrvoApps"),
    put<&User::put_OrvoApps>("OrvoApps", "iApps"),
    method<&User::ClearOrvoApps>("ClearOrvoApps"),
    method<&User::IsAppAccessAllowed>("IsAppAccessAllowed", "iAppName"),
    method<&User::validate>("validate"),
    method<&User::CheckAppUserAccess>("CheckAppUserAccess", "iAppName", "iAppID"),
    method<&User::SetDefaultURL>("SetDefaultURL", "i_lAppID", "i_sURL"),
    method<&User::GetDefaultURL>("GetDefaultURL", "i_lAppID"),

    method<&User::ChangePassword>("ChangePassword", "iOldPwd", "iNewPwd"));
// clang-format on

template <>
inline constexpr auto class_of<User> = describe_class<User, ObjectControl>(
    "OrvoMembership.User", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e707");

}  // namespace orvo
