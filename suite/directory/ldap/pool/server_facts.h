#pragma once

// What a server offers, how its attributes are typed and what its classes require, read once per
// process and server.

#include <memory>
#include <string>

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
};

// The facts of a server from the process's store; none where it has not been asked.
std::shared_ptr<const ServerFacts> stored_facts(const std::string& key);

// The facts of the server that the session is connected to, from the process's store under `key`
// (ServerAddress::key) or, the first time, from the server: its root entry and its schema, two
// round trips. A root entry or schema that the session's user may not read is an empty one; neither
// is then stored, so that other users do not inherit it. Any thread.
FactsResult facts_of(Session& session, const std::string& key);

// The same, read anew and stored in place of what was there: for an attribute that the stored
// schema does not know. Within a minute of the last reading it is taken from the store all the
// same.
FactsResult refreshed_facts_of(Session& session, const std::string& key);

}  // namespace orvo::directory::ldap
