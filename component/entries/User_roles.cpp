#include "component/common/Index16.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/OrvoMemErrors.h"
#include "component/entries/User.h"
#include "component/entries/empty_value.h"
#include "platform/values/values.h"

namespace orvo {
namespace {

constexpr const char16_t* class_prefix = u"OrvoMembership.User.";
constexpr std::size_t Roles = property_row("Roles");
constexpr std::size_t CreditCardUser = role_row("CreditCardUser");

bool holds(const Values& list, std::int32_t number) {
    return any_index16(list.lower_bound(), list.upper_bound(),
                       [&](std::int32_t i) { return equals_number(list[i], number); });
}

}  // namespace

bool User::has_role_of(const RoleProperty& property) {
    return trapped({class_prefix, property.name}, [&] {
        std::int16_t role = property.role;
        return HasRole(role);
    });
}

void User::assign_role_of(const RoleProperty& property, bool enable) {
    trapped({class_prefix, property.name}, [&] {
        std::int16_t role = property.role;
        AssignRole(role, enable);
    });
}

bool User::InvoiceUser() {
    return trapped({class_prefix, "InvoiceUser"}, [&] { return !get_role<CreditCardUser>(); });
}

void User::put_InvoiceUser(bool iValue) {
    trapped({class_prefix, "InvoiceUser"}, [&] { put_role<CreditCardUser>(!iValue); });
}

bool User::HasRole(std::int16_t& iRoleID) {
    return trapped({class_prefix, "HasRole"}, [&] {
        Values roles = get_property<Roles>().to<Values>();
        // An array without elements has no first one to look at, and raises 9.
        if (roles.upper_bound() < 1 && is_empty_value(roles[0]) && profile_)
            roles = call<&Profile::get_whole<Profile::roles>>(profile_).to<Values>();
        return holds(roles, iRoleID);
    });
}

bool User::holds_role(std::int16_t role) { return holds(get_property<Roles>().to<Values>(), role); }

void User::AssignRole(std::int16_t& iRoleType, bool& iEnable) {
    trapped({class_prefix, "AssignRole"}, [&] {
        if (holds_role(iRoleType) == iEnable) return;
        Values roles = get_property<Roles>().to<Values>();
        if (iEnable) {
            // A single 0 means no roles; the first real one takes its place.
            if (roles.upper_bound() == 0 && equals_number(roles[0], 0))
                roles[0] = iRoleType;
            else
                roles.push_back(iRoleType);
        } else if (roles.count() == 1) {
            roles = Values{std::int16_t(0)};
        } else {
            Values kept;
            any_index16(roles.lower_bound(), roles.upper_bound(), [&](std::int32_t i) {
                if (!equals_number(roles[i], iRoleType))
                    kept.push_back(roles[i].to<std::int32_t>());
                return false;
            });
            roles = std::move(kept);
        }
        put_property<Roles>(std::move(roles));
    });
}

Variant User::OrvoApps() {
    return trapped({class_prefix, "OrvoApps"}, [&]() -> Variant {
        // Past the privilege lists: an object that may not read the attribute still says which
        // applications the user has (CheckAppUserAccess, the login).
        Text name = u"OrvoApps";
        Values apps = call<&DirectoryEntry::GetValues>(directory_object_, name).to<Values>();
        if (equals_number(apps[0], 0) && profile_) return call<&Profile::OrvoApps>(profile_);
        if (equals_number(apps[0], -1)) apps[0] = std::int16_t(0);
        return apps;
    });
}

void User::put_OrvoApps(Variant& iApps) {
    trapped({class_prefix, "OrvoApps"}, [&] {
        applications_ = iApps;
        save_apps();
    });
}

void User::ClearOrvoApps() {
    trapped({class_prefix, "ClearOrvoApps"}, [&] {
        applications_ = {};
        save_apps();
    });
}

void User::save_apps() {
    Text name = u"OrvoApps";
    if (applications_.is_empty())
        ClearAttribValue(name);
    else
        SetAttribValue(name, applications_);
}

bool User::IsAppAccessAllowed(const Text&) { return true; }
bool User::validate() { return true; }

void User::CheckAppUserAccess(const Text& iAppName, std::int16_t iAppID) {
    trapped({class_prefix, "CheckAppUserAccess"}, [&] {
        if (!directory_object_) return;
        const Variant apps = OrvoApps();
        if (apps.is_empty() || !holds(apps.to<Values>(), iAppID))
            throw Failure(emErrAppNoAccess, u"Validate", u" " + iAppName);
    });
}

Variant User::SetDefaultURL(std::int32_t, const Text& i_sURL) {
    return trapped({class_prefix, "SetDefaultURL"}, [&] {
        Text name = u"DefaultURL";
        Variant value = Values{i_sURL};
        if (i_sURL.empty())
            ClearAttribValue(name);
        else
            SetAttribValue(name, value);
        return Variant();
    });
}

Text User::GetDefaultURL(std::int32_t) {
    return trapped({class_prefix, "GetDefaultURL"}, [&] { return text_of(u"DefaultURL"); });
}

}  // namespace orvo
