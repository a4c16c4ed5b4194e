#pragma once

#include <optional>
#include <string>

#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap {

// Asks a server for its root entry, as nobody, on a connection of its own. Nothing where it
// answered, whatever it allows nobody; otherwise why it is of no use.
std::optional<std::string> probe(const ServerHost& host, const Limits& limits);

}  // namespace orvo::directory::ldap
