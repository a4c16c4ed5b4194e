#include "component/auth/Validator.h"
#include "component/auth/filter_contract.h"
#include "component/auth/login_settings.h"
#include "component/common/GUIDGenerator.h"
#include "component/common/Index16.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/common/web_page.h"
#include "component/config/DirectoryAccount.h"
#include "component/config/SharedServerInfo.h"
#include "component/entries/User_table.h"
#include "platform/interfaces/late_call.h"

namespace orvo {
namespace {

// All failures of a login are reported under this name.
constexpr const char16_t* login = u"OrvoMembership.Validator.ValidateCredentialsEx";
constexpr std::int32_t administrators_application = 10;

[[noreturn]] void raise_login_failure(const char16_t* description) {
    throw Failure(membership_failed, login, description);
}

// What the user may log in to; empty for a user with no application at all. Administrators have
// application 10 by being administrators: it stands in no entry.
Variant login_applications(const Ref<User>& user) {
    const Values apps = call<&User::OrvoApps>(user).to<Values>();
    const bool has_none = equals_number(apps[0], 0);
    const bool is_administrator = call<&User::get_user_type<user_type_row("IsAdmin")>>(user) ||
                                  call<&User::get_user_type<user_type_row("IsLocalAdmin")>>(user);
    if (has_none && !is_administrator) return {};
    Values list(0, 0);
    if (!has_none) {
        list.resize(apps.upper_bound() + 1);
        any_index16(0, apps.upper_bound(), [&](std::int32_t i) {
            list[i] = apps[i];
            return false;
        });
    }
    if (is_administrator) list.push_back(administrators_application);
    return list;
}

template <class T>
T read_setting(const Object& configuration, const LoginSetting<T>& setting) {
    Variant arguments[] = {u"GLOBAL", setting.key, T{0}};
    const Variant status = late::call_by_reference(configuration, u"GetValue2", arguments);
    return status.to<std::int32_t>() == 0 ? arguments[2].template to<T>() : setting.otherwise;
}

}  // namespace

void Validator::IObjectControl_Activate() {
    trapped(u"OrvoMembership.Validator.IObjectControl", [&] {
        if (!runs_in_page(u"Application",
                          {u"OrvoMembership.Validator.IObjectControl_Activate",
                           u"No object context", u"No items found in object context"}))
            return;
        m_oResponse = context_item(u"Response");
        m_oSession = context_item(u"Session");
        m_oRequest = context_item(u"Request");
        m_oApplication = context_item(u"Application");
        load_site_configuration();
    });
}

void Validator::IObjectControl_Deactivate() {
    m_oResponse = nullptr;
    m_oSession = nullptr;
    m_oRequest = nullptr;
    m_oApplication = nullptr;
}

Variant Validator::ValidateCredentials(Variant& iVarUserID, Variant& iVarPassword,
                                       Variant& iVarOriginalUrl) {
    return trapped(login, [&]() -> Variant {
        Text sUserId = iVarUserID.to<Text>();
        Secret sPassword = iVarPassword.to<Secret>();
        iVarOriginalUrl.to<Text>();  // is not used, but must be one
        const std::int32_t lResult = CheckUserPassword(sUserId, sPassword);
        if (lResult < 0) return lResult;

        const auto user = make<User>();
        ServerInfo& info = *shared_server_info();
        Text path = info.FullUserPath(sUserId);
        call<&User::BindAs>(user, sUserId, path, sPassword);
        const Variant applications = login_applications(user);

        if (!m_oResponse)
            raise_login_failure(u"No response object, session variables cannot be set");
        const Text sCookieName = info.cookie_name();
        if (trimmed(sCookieName).empty())
            raise_login_failure(u"Cookie name is empty, cannot continue. Check configuration file");
        Text sOldGuid = late::get(m_oRequest, u"Cookies", {sCookieName}).to<Text>();
        const Text sNewGuid = UpdateAuthorizationFilter(sUserId, sPassword, sOldGuid);
        if (sNewGuid.empty())
            raise_login_failure(
                u"No new GUID can be set. Check installation of the authorization filter");

        if (sOldGuid != sNewGuid) set_cookie(sCookieName, sNewGuid);
        const auto put = [&](const char16_t* name, const Variant& value) {
            late::put_value(m_oSession, value, {name});
        };
        put(session_guid, sNewGuid);
        put(session_user, iVarUserID);
        put(session_account, info.FullUserPath(sUserId));
        put(session_password, iVarPassword);
        if (!applications.is_empty()) register_login(sUserId, applications);
        return lResult;
    });
}

// Without an expiry, so that it goes with the browser.
void Validator::set_cookie(const Text& name, const Text& guid) {
    late::put(m_oResponse, u"Cookies", guid, {name});
    late::put(late::get(m_oResponse, u"Cookies", {name}).to<Object>(), u"Path", u"/");
}

void Validator::register_login(const Text& user, const Variant& applications) {
    const Object configuration = Gen_GetComponent(u"Quendra.Configuration");
    late::call(configuration, u"LoadSiteConfig", {false});
    const auto iMultiLogin = read_setting(configuration, multi_login);
    const auto lMultiLoginTimeout = read_setting(configuration, multi_login_timeout);
    const Text guid = session_text(m_oSession, session_guid);
    const auto connector = Gen_GetComponent<FilterConnector>(filter_connector_progid);
    call<&FilterConnector::RegisterLogin>(connector, user, applications, guid, iMultiLogin,
                                          lMultiLoginTimeout);
}

Text Validator::UpdateAuthorizationFilter(Text& sUserId, Secret& sPassword, Text& sGuid) {
    constexpr const char16_t* source = u"OrvoMembership.Validator.UpdateAuthorizationFilter";
    return trapped(source, [&] {
        Text guid = sGuid;
        const auto user = Gen_GetComponent<User>(u"OrvoMembership.User");
        Text path = shared_server_info()->FullUserPath(sUserId);
        call<&User::BindAs>(user, sUserId, path, sPassword);
        const Text nt_user = call<&User::NTUser>(user);
        const Secret nt_password = call<&User::NTPassword>(user);
        path = shared_server_info()->FullUserPath(sUserId);

        const Variant item = late::value_of(m_oApplication, {filter_connector_progid});
        const auto connector = item.is_object() ? Ref<FilterConnector>::try_from(item.to<Object>())
                                                : Ref<FilterConnector>();
        if (!connector) {
            // Without a pending error nothing is raised: the login goes on with the GUID that the
            // browser brought, and tells itself where there is none.
            HandleError(source,
                        u"Authorization filter cannot be created. The filter is not installed or "
                        u"cannot be accessed.");
            return guid;
        }
        Ref<FilterUser> record;
        if (guid.empty())
            guid = NewGUIDText();
        else
            record = call<&FilterConnector::FindUserByGUID>(connector, guid);
        if (!record) record = call<&FilterConnector::CreateUserWithGUID>(connector, guid);
        if (!record) {
            // As above: the GUID is used without a record behind it.
            HandleError(source, u"User already exists");
            return guid;
        }
        call<&FilterUser::put_AccountPath>(record, path);
        call<&FilterUser::put_Password>(record, sPassword);
        call<&FilterUser::put_NTUser>(record, nt_user);
        call<&FilterUser::put_NTPassword>(record, nt_password);
        call<&FilterUser::put_UserName>(record, sUserId);
        call<&FilterUser::Save>(record);
        return guid;
    });
}

void Validator::ChangePassword(Text& username, Secret& oldpassword, Secret& newpassword) {
    trapped(u"OrvoMembership.Validator.ChangePassword", [&] {
        const auto user = Gen_GetComponent<User>(u"OrvoMembership.User");
        DirectoryAccount account = script_account();
        call<&User::BindAs>(user, username, account.name, account.secret);
        call<&User::ChangePassword>(user, oldpassword, newpassword);
    });
}

}  // namespace orvo
