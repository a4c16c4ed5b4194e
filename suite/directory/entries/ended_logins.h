#pragma once

// Whose logins at the site's authorization filter end with a change of the directory.

#include <functional>
#include <string>
#include <vector>

#include "suite/directory/entries/audited.h"

namespace orvo::directory {

struct EndedLogins {
    // Full names of users as people log in with them, more than one where a user has several;
    // empty: no logins end.
    std::vector<std::string> accounts = {};
    // The login of the page that makes the change goes on: whoever changes the own password stays.
    bool spares_own = false;
    // The change is made, or nobody knows whether it is; otherwise no logins end.
    bool may_be_done = false;
};

// Makes a change as audited_change does, from `make`, and ends the logins that it says, also where
// it raises. A process or machine without the filter has none to end. Where some cannot be ended,
// the others are all the same, and it raises: what `make` has raised, or that the change is made,
// with why the logins may go on.
void audited_account_change(const AuditedChange& change,
                            const std::function<void(EndedLogins& ended)>& make);

}  // namespace orvo::directory
