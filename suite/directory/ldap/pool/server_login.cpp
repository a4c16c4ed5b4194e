#include "suite/directory/ldap/pool/server_login.h"

#include "suite/directory/ldap/wire/failures.h"
#include "suite/directory/names/written_name.h"

namespace orvo::directory::ldap {

ServerLogin::ServerLogin(TextView server, TextView user, TextView password,
                         const std::optional<Limits>& limits)
    : limits_(limits), presented_(password) {
    const ServerAddress address = ServerAddress::parse(server);
    if (presented_->empty() && !user.empty())
        raise_code(result_code::invalid_credentials, "A password is required.");
    // In UTF-8 they would be those of others.
    if (!is_well_formed(user))
        raise_code(result_code::invalid_credentials,
                   "The user's name holds half of a surrogate pair.");
    if (!is_well_formed(password))
        raise_code(result_code::invalid_credentials,
                   "The password holds half of a surrogate pair.");
    const Text name = full_name(user);
    // The client library would read on only as far as there.
    if (name.find(u'\0') != Text::npos)
        raise_code(result_code::invalid_credentials, "The user's name holds a NUL.");
    credentials_ = ConnectionPool::of_process().enter(address, to_utf8(name), *presented_);
}

Lease ServerLogin::take() {
    ConnectionPool& pool = ConnectionPool::of_process();
    if (!presented_) return pool.lease(credentials_, limits_);
    Lease lease = pool.lease_presented(credentials_, *presented_, limits_);
    presented_.reset();
    return lease;
}

}  // namespace orvo::directory::ldap
