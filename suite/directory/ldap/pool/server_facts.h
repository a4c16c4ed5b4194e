#pragma once

// What a server offers, how its attributes are typed and what its classes require.

#include <memory>

#include "suite/directory/ldap/settings/clock.h"
#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/schema/object_classes.h"

namespace orvo::directory::ldap {

// Immutable once made; shared by threads.
struct ServerFacts {
    AttributeTypes types;
    ObjectClasses classes;
    // Whether the server hashes passwords itself (Password Modify, RFC 3062).
    bool changes_passwords = false;
};

struct FactsResult : Result {
    std::shared_ptr<const ServerFacts> facts;  // set where the result is a success
    bool is_whole = false;                     // whether the user was shown all of it
};

// Reads the facts of the server that the session is connected to: its root entry and its schema,
// two round trips. A root entry or schema that the session's user may not read is an empty one.
FactsResult read_facts(Session& session);

// Facts as they are kept with a server (Server::facts).
struct StoredFacts {
    std::shared_ptr<const ServerFacts> facts;  // null where nobody has read them
    Clock::time_point read_at;
};

}  // namespace orvo::directory::ldap
