#pragma once

// The table of User's interface. Its order is binary interface: binding, attributes, the catalogue
// in its order, computed properties, roles and applications, password.

#include "component/entries/User.h"

namespace orvo {

namespace detail {

// The rows of a list of properties, the getter's and the setter's of each in turn. `getter` and
// `setter` make the row of a name; their template argument is the property's number in the list.
template <const auto& list, class Getter, class Setter>
constexpr auto property_rows(Getter getter, Setter setter) {
    const auto row_at = [=]<std::size_t place>() {
        constexpr std::size_t row = place / 2;
        if constexpr (place % 2 == 0)
            return getter.template operator()<row>(list[row].name);
        else
            return setter.template operator()<row>(list[row].name);
    };
    const auto rows = [=]<std::size_t... place>(std::index_sequence<place...>) {
        return group(row_at.template operator()<place>()...);
    };
    return rows(std::make_index_sequence<2 * std::size(list)>());
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

    detail::property_rows<user_catalogue>(
        []<std::size_t row>(auto name) { return get<&User::get_property<row>>(name); },
        []<std::size_t row>(auto name) { return put<&User::put_property<row>>(name, "iValue"); }),

    get<&User::CN>("CN"),
    get<&User::GUID>("GUID"),
    get<&User::get_Profile>("Profile"),
    get<&User::NTUser>("NTUser"),
    get<&User::NTPassword>("NTPassword"),
    detail::property_rows<user_types>(
        []<std::size_t row>(auto name) { return get<&User::get_user_type<row>>(name); },
        []<std::size_t row>(auto name) { return put<&User::put_user_type<row>>(name, "iValue"); }),
    get<&User::InvoiceUser>("InvoiceUser"),
    put<&User::put_InvoiceUser>("InvoiceUser", "iValue"),

    detail::property_rows<user_roles>(
        []<std::size_t row>(auto name) { return get<&User::get_role<row>>(name); },
        []<std::size_t row>(auto name) { return put<&User::put_role<row>>(name, "iValue"); }),
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

extern template struct detail::callee<User>;

template <>
inline constexpr auto class_of<User> = describe_class<User, ObjectControl>(
    "OrvoMembership.User", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e707");

}  // namespace orvo
