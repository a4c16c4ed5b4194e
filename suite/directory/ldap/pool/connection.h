#pragma once

#include <optional>
#include <string>

#include "suite/directory/ldap/pool/server_group.h"
#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/settings/pool_settings.h"

namespace orvo::directory::ldap {

// What a password check found right: whose password, asked when, and the write mark that the user's
// entry had then. It ends with the next check on the same connection, with the first one below the
// same container after RecheckAfter, and with the connection.
struct CheckedLogin {
    std::string user;  // as the server was given it: it may tell names apart that are one here
    Secret password;
    Clock::time_point at;
    std::uint64_t mark;
};

// A connection to a server, and since when it is one. Used by one thread at a time.
struct Connection {
    Session session;
    ServerRef server;
    std::uint64_t server_generation;  // Server::generation when it was opened
    Clock::time_point opened;
    Clock::time_point used;  // when it was last released
    // As whom a password check has just authenticated it; nothing where the password was not right.
    std::optional<CheckedLogin> checked = {};

    // Whether it may be used again at all: neither too old nor idle for too long, and its server
    // has not failed since it was opened.
    bool is_usable(const PoolSettings& settings, Clock::time_point now) const {
        return now - opened < settings.age && now - used < settings.idle &&
               server->generation() == server_generation;
    }
};

}  // namespace orvo::directory::ldap
