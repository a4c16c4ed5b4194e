#include "suite/authfilter/live_logins.h"

#include <algorithm>

#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "suite/authfilter/audited_logins.h"

namespace orvo::authfilter {

Variant LiveLogins::LoginsOf(const Text& guid) {
    Values logins;
    for (const LiveLoginFacts& facts : store_.logins_of(guid))
        logins.push_back(make<LiveLogin>(facts).object());
    return logins;
}

bool LiveLogins::EndLogin(const Text& guid, const Text& id) {
    for (const LiveLoginFacts& facts : store_.logins_of(guid))
        if (LiveLogin(facts).ID() == id) return end(guid, facts);
    return false;
}

bool LiveLogins::end(const Text& guid, const LiveLoginFacts& facts) {
    const Text user = store_.user_of(guid);
    if (!store_.try_end(guid, facts.number)) return false;
    record_logout(user, user);
    return true;
}

std::int32_t LiveLogins::EndOthers(const Text& guid) {
    const Text user = store_.user_of(guid);
    const std::size_t ended = store_.end_others(guid);
    if (ended != 0) record_logouts(user, user, ended);
    return static_cast<std::int32_t>(ended);
}

std::int32_t LiveLogins::EndAllOf(const Text& account, const Text& except) {
    const Text by = except.empty() ? Text() : store_.user_of(except);
    const std::size_t ended = store_.end_all_of(account, except);
    if (ended != 0) record_logouts(account, by, ended);
    return static_cast<std::int32_t>(ended);
}

void LiveLogins::put_MostOfOneUser(std::int32_t most) {
    if (most < 1)
        throw Failure(runtime_error::invalid_call, {},
                      u"A user has at least one login, not " + decimal(most));
    store_.set_most_of_user(static_cast<std::size_t>(most));
}

}  // namespace orvo::authfilter
