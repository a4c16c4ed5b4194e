#pragma once

// What a server offers, how its attributes are typed and what its classes require.

#include <memory>

#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/schema/object_classes.h"
#include "suite/directory/settings/clock.h"

namespace orvo::directory::ldap {

// How a server takes a user's new password.
enum class PasswordWriting {
    modify_operation,   // Password Modify (RFC 3062); also tried on a server that shows nothing
    unicode_attribute,  // `unicodePwd`: Active Directory and Samba
    hashed_here,        // a hash as the value of `userPassword`: OpenLDAP without that operation
    unknown,
};

// Immutable once made; shared by threads.
struct ServerFacts {
    AttributeTypes types;
    ObjectClasses classes;
    PasswordWriting password_writing = PasswordWriting::modify_operation;
    // Whether a password that users set themselves, with the former one, is something else to the
    // server than one that another account sets for them: which they may have to change at once,
    // say.
    bool tells_own_change_from_reset = false;
    // Whether it follows groups in groups itself, by the rule 1.2.840.113556.1.4.1941.
    bool has_chain_rule = false;
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
