#pragma once

#include <chrono>
#include <cstddef>

#include "platform/automation/variant.h"
#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap {

// How the process keeps its connections.
struct PoolSettings {
    // Connections of one user (or of the password checks) to one server, at most. 0: there is no
    // such limit, and none is kept longer than an object that works with the same credentials.
    std::size_t maximum_size = 16;
    // Connections that wait for work, of all users and servers together, at most; those that have
    // waited longest are closed first. Many users who come once each would otherwise leave a
    // connection each.
    std::size_t maximum_idle = 64;
    // How long an operation waits for a connection where there are `maximum_size` in use.
    std::chrono::milliseconds wait{5000};
    // How long a connection waits for work, and lives, before it is closed.
    std::chrono::seconds idle{30};
    std::chrono::seconds age{300};
    // How long credentials that the server accepted are good for another Bind or Connect without
    // asking it, and how long a password check need not ask for a password policy of a server that
    // has shown that it has none.
    std::chrono::seconds recheck{5};
    // Whether every password check asks what the server's password policy says, or not those on a
    // connection whose server has neither answered that nor lists it. One that does not know the
    // question notes it in its log each time, which costs time.
    bool always_asks_policy = false;
    Limits limits;
};

// The settings changed by what InitializeConnectionPool is given; those that are not named stay.
// Raises what read_numbers raises. Their names, units and ranges:
//
//   - MaximumSize: connections, 0 to 1000.
//   - MaximumIdle: connections, 0 to 10000.
//   - WaitLimit: milliseconds, 0 to 600000.
//   - IdleLimit: seconds, 1 to 86400.
//   - AgeLimit: seconds, 1 to 604800.
//   - ConnectLimit: milliseconds, 1 to 600000.
//   - OperationLimit: milliseconds, 1 to 3600000.
//   - PollLimit: microseconds, 0 to 1000.
//   - RecheckAfter: seconds, 0 to 3600.
//   - AskPolicy: 0 (servers that know it) or 1 (every server).
PoolSettings changed(PoolSettings settings, const Variant& names, const Variant& values);

}  // namespace orvo::directory::ldap
