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

void LiveLogins::put_MostOfOneUser(std::int32_t most) {
    if (most < 1)
        throw Failure(runtime_error::invalid_call, {},
                      u"A user has at least one login, not " + decimal(most));
    store_.set_most_of_user(static_cast<std::size_t>(most));
}

}  // namespace orvo::authfilter
