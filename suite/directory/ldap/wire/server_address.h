#pragma once

// The server setting, parsed once.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/values/text.h"

namespace orvo::directory::ldap {

enum class Security {
    none,       // as the connection comes
    start_tls,  // encrypted by an extended operation before anything else is sent
    tls,        // encrypted from the first byte (ldaps)
};

struct ServerHost {
    std::string name;  // a host name or an address, without brackets
    std::uint16_t port = 389;
    Security security = Security::none;
    std::string ca_file = {};  // certificates to trust; empty: the system's

    // "ldap://dir01:389", as messages and the client library name it.
    std::string url() const;
    // As it may stand in the server setting, alone.
    std::string setting() const;
    // One spelling for equal addresses, for keys.
    std::string key() const;
    bool operator==(const ServerHost&) const = default;
};

// One host or several, to be tried in order. Written, with blanks between hosts, as
//
//   dir01    dir01:3890    ldap://dir01    LDAP://dir01:389/    ldaps://dir01    ldap://[::1]:389
//
// The port is 389 by default, 636 with ldaps. Options follow a "?", with "&" between them and
// "%20" for a blank in a value:
//
//   ldap://dir01/?starttls                      encrypt with StartTLS
//   ldaps://dir01/?cafile=/etc/shop/ca.pem      trust the certificates of this file
//
// Without `cafile` the certificates that the client library's own configuration names are trusted
// (on Debian /etc/ldap/ldap.conf, or the variable LDAPTLS_CACERT). A server's certificate is always
// verified; there is no option against it.
class ServerAddress {
public:
    // Raises result code 89 with what cannot be read, and why.
    static ServerAddress parse(TextView text);

    const std::vector<ServerHost>& hosts() const { return hosts_; }

    // One spelling for equal addresses, for keys.
    std::string key() const;

private:
    std::vector<ServerHost> hosts_;
};

}  // namespace orvo::directory::ldap
