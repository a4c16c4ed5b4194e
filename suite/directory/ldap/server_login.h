#pragma once

#include <string>

#include "platform/automation/secret.h"
#include "suite/directory/ldap/session.h"

namespace orvo::directory::ldap {

// Who works on which server: all that it takes to connect, and to connect again.
class ServerLogin {
public:
    // Both credentials empty: as nobody. Raises 0x8007052E for a name with an empty password, which
    // the server is not asked about (it would take that for nobody and report success), and result
    // code 89 for a server that cannot be read.
    ServerLogin(TextView server, TextView user, TextView password, const Limits& limits);

    // A new connection, authenticated. Raises 0x8007052E for wrong credentials.
    Session connect() const;

    const std::string& server_key() const { return server_key_; }
    const std::string& user() const { return user_; }
    // From now on the user has this password.
    void set_password(Secret password) { password_ = std::move(password); }

private:
    ServerAddress server_;
    std::string server_key_;
    std::string user_;
    Secret password_;
    Limits limits_;
};

}  // namespace orvo::directory::ldap
