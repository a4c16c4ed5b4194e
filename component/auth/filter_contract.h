#pragma once

// The web server's authorization filter, as the login sees it.
//
// The filter keeps a record for each login GUID (the value of the login cookie) with the
// credentials of the user who logged in, and the live logins: which user may use which applications
// under which GUID. Its connector lives in the web application object and is shared by all its
// sessions: every operation may be called from any thread.

#include "platform/interfaces/interface.h"
#include "platform/values/secret.h"
#include "platform/values/variant.h"

namespace orvo {

// One record, for the thread that asked for it. What is put is the record's own until Save, which
// stores all of it at once; a record that is released without it changes nothing. All raise what
// the filter raises, which may be a store that is full or out of reach.
class FilterUser {
public:
    virtual Text GUID() = 0;
    virtual Text UserName() = 0;
    virtual void put_UserName(const Text& name) = 0;
    // The user's distinguished name.
    virtual Text AccountPath() = 0;
    virtual void put_AccountPath(const Text& path) = 0;
    virtual Secret Password() = 0;
    virtual void put_Password(const Secret& password) = 0;
    virtual Text NTUser() = 0;
    virtual void put_NTUser(const Text& user) = 0;
    virtual Secret NTPassword() = 0;
    virtual void put_NTPassword(const Secret& password) = 0;
    virtual void Save() = 0;

protected:
    ~FilterUser() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<FilterUser> = describe<FilterUser>(
    "IFilterUser", "8e5a3c1d-7b64-4f5e-9a0c-2d1f6b7c8e01",
    about("What the authorization filter keeps of somebody who logs in: a record under a GUID."),
    get<&FilterUser::GUID>("GUID").help("The login's GUID, the value of the login cookie."),
    get<&FilterUser::UserName>("UserName").help("The name as it was typed."),
    put<&FilterUser::put_UserName>("UserName", "name"),
    get<&FilterUser::AccountPath>("AccountPath").help("The user's distinguished name."),
    put<&FilterUser::put_AccountPath>("AccountPath", "path"),
    get<&FilterUser::Password>("Password").help("The user's password."),
    put<&FilterUser::put_Password>("Password", "password"),
    get<&FilterUser::NTUser>("NTUser")
        .help("The name of the service account of the user's type."),
    put<&FilterUser::put_NTUser>("NTUser", "user"),
    get<&FilterUser::NTPassword>("NTPassword").help("That account's password."),
    put<&FilterUser::put_NTPassword>("NTPassword", "password"),
    method<&FilterUser::Save>("Save")
        .help("Stores all that was put, at once; without it nothing changes."));
// clang-format on

// A GUID has 1 to so many characters.
inline constexpr std::size_t longest_login_guid = 256;

// Raises as a record does. GUIDs are compared exactly.
class FilterConnector {
public:
    // Nothing where the filter holds no record under this GUID.
    virtual Ref<FilterUser> FindUserByGUID(const Text& guid) = 0;
    // A new record, which the filter holds from now on; nothing where it holds one already.
    virtual Ref<FilterUser> CreateUserWithGUID(const Text& guid) = 0;
    // Begins a login. `applications`: an array of numbers. multi_login: 0 a user has one live
    // login, 1 any number. timeout: minutes without a request after which the login ends.
    virtual bool RegisterLogin(const Text& user, const Variant& applications, const Text& guid,
                               std::int16_t multi_login, std::int32_t timeout) = 0;
    // Whether the GUID's login is alive and was registered with this application. The question
    // counts as a request.
    virtual bool IsLoggedIn(const Text& guid, std::int32_t application) = 0;
    // Ends the GUID's login and forgets its record.
    virtual void Logout(const Text& guid) = 0;

protected:
    ~FilterConnector() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<FilterConnector> = describe<FilterConnector>(
    "IFilterConnector", "8e5a3c1d-7b64-4f5e-9a0c-2d1f6b7c8e02",
    about("The authorization filter: who is logged in, and for which applications."),
    method<&FilterConnector::FindUserByGUID>("FindUserByGUID", "guid")
        .help("The record under a GUID, or nothing."),
    method<&FilterConnector::CreateUserWithGUID>("CreateUserWithGUID", "guid")
        .help("A new record; nothing where there is one already."),
    method<&FilterConnector::RegisterLogin>("RegisterLogin", "user", "applications", "guid",
                                            "multiLogin", "timeout")
        .help("Begins a login for these applications, an array of numbers; always true. With a "
              "multiLogin of 0 it ends the user's other logins. The timeout is in minutes without "
              "a question for it: 10 where it is below 1, at most a year."),
    method<&FilterConnector::IsLoggedIn>("IsLoggedIn", "guid", "application")
        .help("Whether the login is alive and has this application. The question counts as a "
              "request."),
    method<&FilterConnector::Logout>("Logout", "guid")
        .help("Ends the login and forgets its record."));
// clang-format on

// Both the connector's ProgID and its name in the web application object.
inline constexpr const char16_t* filter_connector_progid = u"TavikAuthFilter.Connector";

}  // namespace orvo
