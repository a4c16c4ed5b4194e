#pragma once

// The live logins of one user, for a page on which people see and end their own.

#include "platform/interfaces/hosted.h"
#include "platform/values/variant.h"
#include "suite/authfilter/filter_connector.h"

namespace orvo::authfilter {

// A login as it was when it was asked for; for the thread that asked. It does not tell its GUID.
class LiveLogin {
public:
    explicit LiveLogin(const LiveLoginFacts& facts) : facts_(facts) {}

    // For EndLogin.
    Text ID() { return decimal(static_cast<long long>(facts_.number)); }
    // Seconds since it began, and since the last question for it.
    double Age() { return static_cast<double>(facts_.age.count()); }
    double IdleTime() { return static_cast<double>(facts_.idle.count()); }
    // Whether it is the one with whose GUID was asked.
    bool IsThisOne() { return facts_.is_asker; }

private:
    const LiveLoginFacts facts_;
};

// Any thread. Who knows the GUID of a live login sees and ends the logins of its user, and no
// other's.
class LiveLogins {
public:
    explicit LiveLogins(Store& store = process_store()) : store_(store) {}

    // An array of LiveLogin, the last login first; without elements where the GUID has no live
    // login. Does not count as a request.
    Variant LoginsOf(const Text& guid);
    // Ends one of them, and its record; whether it was there.
    bool EndLogin(const Text& guid, const Text& id);
    // How many logins (and records) one user has at most, from 1; a new one ends the one that was
    // used longest ago. Raises 5 for what is below. All of the process share it.
    void put_MostOfOneUser(std::int32_t most);
    // Ends all logins of the user who is logged in under this GUID but this one, and their records;
    // how many those were.
    std::int32_t EndOthers(const Text& guid);
    // Ends all logins of an account, whoever asks, but for the one under `except`; how many those
    // were. Records go with them, and those of logins that are only just beginning, which are
    // refused then. `account`: the account path, or the name of a user whose records have none.
    std::int32_t EndAllOf(const Text& account, const Text& except);

private:
    bool end(const Text& guid, const LiveLoginFacts& facts);

    Store& store_;
};

}  // namespace orvo::authfilter

namespace orvo {

template <>
inline constexpr auto table_of<authfilter::LiveLogin> = describe<authfilter::LiveLogin>(
    "ILiveLogin", "8e5a3c1d-7b64-4f5e-9a0c-2d1f6b7c8e03",
    about("A live login, as it was when it was asked for."),
    get<&authfilter::LiveLogin::ID>("ID").help("Names it for EndLogin; it is not the GUID."),
    get<&authfilter::LiveLogin::Age>("Age").help("Seconds since it began."),
    get<&authfilter::LiveLogin::IdleTime>("IdleTime").help("Seconds since its last request."),
    get<&authfilter::LiveLogin::IsThisOne>("IsThisOne").help("Whether it is the one that asked."));
template <>
inline constexpr auto table_of<authfilter::LiveLogins> = describe<authfilter::LiveLogins>(
    "ILiveLogins", "8e5a3c1d-7b64-4f5e-9a0c-2d1f6b7c8e04",
    about("A user's live logins, for a page on which people see and end their own."),
    method<&authfilter::LiveLogins::LoginsOf>("LoginsOf", "guid")
        .help("The live logins of the user who is logged in under this GUID, as an array, the last "
              "login first; without elements where nobody is."),
    method<&authfilter::LiveLogins::EndLogin>("EndLogin", "guid", "id")
        .help("Ends one of them, and says whether it was there."),
    put<&authfilter::LiveLogins::put_MostOfOneUser>("MostOfOneUser", "most")
        .help("How many logins a user has at most, in the whole process. The site's host puts it."),
    method<&authfilter::LiveLogins::EndOthers>("EndOthers", "guid")
        .help("Ends all logins of the user who is logged in under this GUID but this one; how many "
              "those were."),
    method<&authfilter::LiveLogins::EndAllOf>("EndAllOf", "account", optional("except"))
        .help("Ends all logins of an account, on an administrator's word, but for the one under "
              "the GUID that is excepted; how many those were. The account is its full name, as "
              "Session(\"REMOTE_ACCOUNT\") has it."));

template <>
inline constexpr auto class_of<authfilter::LiveLogin> =
    describe_class<authfilter::LiveLogin>("TavikAuthFilter.Login");
template <>
inline constexpr auto class_of<authfilter::LiveLogins> =
    describe_class<authfilter::LiveLogins>("TavikAuthFilter.Logins",
                                           "8e5a3c1d-7b64-4f5e-9a0c-2d1f6b7c8e12")
        .shared();

}  // namespace orvo
