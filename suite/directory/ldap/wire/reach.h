#pragma once

// The first steps of a connection, one by one, for whoever looks for the one that fails. Not on
// Windows.

#include <optional>
#include <string>
#include <vector>

#include "suite/directory/ldap/wire/certificate.h"
#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap {

// A host's addresses, as they are tried. None: `why` tells.
std::vector<std::string> find_addresses(const ServerHost& host, const Limits& limits, Result& why);

// Connects, sends nothing and closes: the address that has accepted. Empty: `why` tells.
std::string reached_address(const ServerHost& host, const Limits& limits, Result& why);

// What there is against the certificate of a server that encryption was not agreed on with, on a
// connection of its own; nothing where it is not the certificate.
std::optional<CertificateFault> certificate_fault(const ServerHost& host, const Limits& limits);

}  // namespace orvo::directory::ldap
