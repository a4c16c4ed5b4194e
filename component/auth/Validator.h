#pragma once

#include "platform/interfaces/hosted.h"
#include "platform/objects/context/object_control.h"
#include "platform/values/secret.h"
#include "platform/values/variant.h"

namespace orvo {

// Checks a user's password against the directory and, in a web page, turns a right one into a
// logged-in session. It takes the page's objects from the object context at activation and holds
// them until it is deactivated. Used by the thread that made it.
//
// What fails is logged and raised again by the member that was called; setServerInfo alone passes
// failures on as they are.
class Validator final : public ObjectControl {
public:
    Validator() { IObjectControl_Activate(); }
    ~Validator() { IObjectControl_Deactivate(); }

    // The login. Answers the password check's number, which is negative for a refusal; that is no
    // failure, and leaves cookie and session alone. Otherwise binds the user, hands the credentials
    // to the authorization filter, sets the login cookie (where its value changed) and the session
    // variables QUENDRAID, REMOTE_USER, REMOTE_ACCOUNT and REMOTE_PASSWORD, and registers the login
    // with the filter. What was done before a failure stays done.
    //
    // A user without applications gets cookie and session, but no registration; administrators are
    // always given application 10. iVarOriginalUrl is not used.
    //
    // Raises membership_failed outside a web page, without a cookie name in the settings, and where
    // there is no GUID to be had.
    Variant ValidateCredentials(Variant& iVarUserID, Variant& iVarPassword,
                                Variant& iVarOriginalUrl);
    // The provider's own answer for the user's full path and the password, as a 32-bit integer:
    // negative for a failed check, which is no failure of this operation.
    Variant ValidatePassword(Variant& iUserId, Variant& iPassword);
    // Loads a site configuration file into the thread's shared settings.
    void setServerInfo(const Text& i_sConfigurationPath);
    // Opens the entry with the service account; the old password is checked by the user's own
    // ChangePassword, which raises emErrPwdNotCorrect.
    void ChangePassword(Text& username, Secret& oldpassword, Secret& newpassword);

    void IObjectControl_Activate() override;
    void IObjectControl_Deactivate() override;
    bool IObjectControl_CanBePooled() override { return false; }

private:
    std::int32_t CheckUserPassword(Text& sUserId, const Secret& sPassword);
    Text UpdateAuthorizationFilter(Text& sUserId, Secret& sPassword, Text& sGuid);
    void set_cookie(const Text& name, const Text& guid);
    void register_login(const Text& user, const Variant& applications);

    Object m_oResponse;
    Object m_oSession;
    Object m_oRequest;
    Object m_oApplication;
};

// clang-format off
template <>
inline constexpr auto table_of<Validator> = describe<Validator>(
    "IValidator", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e715",
    about("Checks passwords, and logs users of web pages in."),
    method<&Validator::ValidateCredentials>("ValidateCredentials", "iVarUserID", "iVarPassword",
                                            "iVarOriginalUrl")
        .help("Logs a user of a web page in: cookie, session, authorization filter. A negative "
              "answer is that of the password check; nothing is done then."),
    method<&Validator::ValidatePassword>("ValidatePassword", "iUserId", "iPassword")
        .help("Checks a password: 0 is right, -1 wrong, -2 locked, -3 disabled, -4 right but "
              "expired, -5 too many failures for now."),
    method<&Validator::setServerInfo>("setServerInfo", "i_sConfigurationPath")
        .help("Loads a site configuration file into the settings that all objects of the thread "
              "share."),
    method<&Validator::ChangePassword>("ChangePassword", "username", "oldpassword", "newpassword")
        .help("Changes a user's password with the old one. Nobody has to be logged in."));
// clang-format on

extern template struct detail::callee<Validator>;

template <>
inline constexpr auto class_of<Validator> = describe_class<Validator, ObjectControl>(
    "OrvoMembership.Validator", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e705");

}  // namespace orvo
