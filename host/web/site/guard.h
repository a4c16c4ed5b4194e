#pragma once

#include "host/web/sessions/session_store.h"
#include "host/web/site/site.h"

namespace orvo::web {

// Whether a browser may see a guarded path: its session, opened before, must hold a login
// (QUENDRAID), the login cookie must say the same GUID, the authorization filter must have that
// GUID logged in for the application, and the account that it logged in must be the session's
// (REMOTE_ACCOUNT). So neither a login cookie alone, nor a session alone, nor a GUID that somebody
// else has logged in under since, opens anything. `connector` is the application's; without one
// nothing guarded is open.
bool is_allowed(const SessionLogin& login, const Text& cookie, const Variant& connector,
                std::int32_t application);

// The login page's address for a browser that asked for `target` ("/path?query"); the login page
// finds what was asked for in its query as "url", unless that would be too long for an address.
std::string login_address(const Site& site, std::string_view target);

}  // namespace orvo::web
