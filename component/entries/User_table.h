#pragma once

// The table of User's interface. Its order is binary interface: binding, attributes, the catalogue
// in its order, computed properties, roles and applications, password.

#include "component/entries/User.h"

namespace orvo {

namespace detail {

// A sentence that is put together from a row of a list.
class Sentence {
public:
    constexpr const char* text() const { return text_.data(); }

    constexpr Sentence& operator+=(std::string_view words) {
        for (const char letter : words) add(letter);
        return *this;
    }
    constexpr Sentence& operator+=(std::u16string_view name) {
        for (const char16_t letter : name) add(static_cast<char>(letter));
        return *this;
    }
    constexpr Sentence& operator+=(int number) {
        if (number > 9) *this += number / 10;
        add(static_cast<char>('0' + number % 10));
        return *this;
    }

private:
    constexpr void add(char letter) {
        if (length_ + 1 == text_.size()) throw "the sentence is too long";
        text_[length_++] = letter;
    }

    std::array<char, 96> text_{};
    std::size_t length_ = 0;
};

consteval Sentence help_of(const UserProperty& property) {
    Sentence help;
    help += "The attribute ";
    help += std::u16string_view(property.attribute);
    help += property.fallback == Fallback::never ? "." : "; the profile's where it has no value.";
    return help;
}
consteval Sentence help_of(const UserTypeProperty& property) {
    Sentence help;
    help += "Whether the user is of type ";
    help += property.type;
    help += "; setting it makes the user one.";
    return help;
}
consteval Sentence help_of(const RoleProperty& property) {
    Sentence help;
    help += "Whether the user has the role ";
    help += property.role;
    help += "; setting it grants or withdraws it.";
    return help;
}

template <const auto& list, std::size_t row>
inline constexpr Sentence property_help = help_of(list[row]);

// The rows of a list of properties, the getter's and the setter's of each in turn. `getter` and
// `setter` make the row of a name; their template argument is the property's number in the list.
template <const auto& list, class Getter, class Setter>
constexpr auto property_rows(Getter getter, Setter setter) {
    const auto row_at = [=]<std::size_t place>() {
        constexpr std::size_t row = place / 2;
        if constexpr (place % 2 == 0)
            return getter.template operator()<row>(list[row].name)
                .help(property_help<list, row>.text());
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
    about("A user: attributes, typed properties, roles, applications, password."),
    method<&User::BindAs>("BindAs", "iCommonName", "iUsername", "iPwd")
        .help("Binds to a user by its common name, with a directory account."),
    method<&User::BindToGuid>("BindToGuid", "iGUID", "iUsername", "iPassword")
        .help("Binds to the user with this GUID, with a directory account."),
    method<&User::setServerInfo>("setServerInfo", "i_sConfigurationPath")
        .help("Loads a site configuration file into the settings that all objects of the thread "
              "share."),

    method<&User::GetAttribValue>("GetAttribValue", "iAttribName")
        .help("The values of an attribute as an array; empty text where they may not be read."),
    method<&User::SetAttribValue>("SetAttribValue", "iAttribName", "iAttribValue")
        .help("Writes an attribute; nothing happens where it may not be written."),
    method<&User::ClearAttribValue>("ClearAttribValue", "iAttribName")
        .help("Removes an attribute."),

    detail::property_rows<user_catalogue>(
        []<std::size_t row>(auto name) { return get<&User::get_property<row>>(name); },
        []<std::size_t row>(auto name) { return put<&User::put_property<row>>(name, "iValue"); }),

    get<&User::CN>("CN").help("The common name."),
    get<&User::GUID>("GUID").help("The identifier given at creation."),
    get<&User::get_Profile>("Profile").help("The user's profile; nothing without one."),
    get<&User::NTUser>("NTUser").help("Name of the service account for users of this type."),
    get<&User::NTPassword>("NTPassword")
        .help("Password of the service account for users of this type."),
    detail::property_rows<user_types>(
        []<std::size_t row>(auto name) { return get<&User::get_user_type<row>>(name); },
        []<std::size_t row>(auto name) { return put<&User::put_user_type<row>>(name, "iValue"); }),
    get<&User::InvoiceUser>("InvoiceUser").help("The opposite of CreditCardUser."),
    put<&User::put_InvoiceUser>("InvoiceUser", "iValue"),

    detail::property_rows<user_roles>(
        []<std::size_t row>(auto name) { return get<&User::get_role<row>>(name); },
        []<std::size_t row>(auto name) { return put<&User::put_role<row>>(name, "iValue"); }),
    method<&User::HasRole>("HasRole", "iRoleID")
        .help("Whether the user has a role. The profile's roles count for a user who has none."),
    method<&User::AssignRole>("AssignRole", "iRoleType", "iEnable")
        .help("Grants or withdraws a role of the user's own; the profile's are not looked at."),
    get<&User::OrvoApps>("OrvoApps")
        .help("The user's applications, or else the profile's, as an array."),
    put<&User::put_OrvoApps>("OrvoApps", "iApps"),
    method<&User::ClearOrvoApps>("ClearOrvoApps").help("Removes the user's applications."),
    method<&User::IsAppAccessAllowed>("IsAppAccessAllowed", "iAppName").help("Always true."),
    method<&User::validate>("validate").help("Always true."),
    method<&User::CheckAppUserAccess>("CheckAppUserAccess", "iAppName", "iAppID")
        .help("Fails where the user has not this application."),
    method<&User::SetDefaultURL>("SetDefaultURL", "i_lAppID", "i_sURL")
        .help("Sets the address that a login leads to, one for all applications."),
    method<&User::GetDefaultURL>("GetDefaultURL", "i_lAppID")
        .help("The address that a login leads to."),

    method<&User::ChangePassword>("ChangePassword", "iOldPwd", "iNewPwd")
        .help("Changes the password after the old one was checked, which may have expired."));
// clang-format on

extern template struct detail::callee<User>;

template <>
inline constexpr auto class_of<User> = describe_class<User, ObjectControl>(
    "OrvoMembership.User", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e707");

}  // namespace orvo
