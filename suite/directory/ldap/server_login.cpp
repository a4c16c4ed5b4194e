#include "suite/directory/ldap/server_login.h"

#include <utility>

#include "suite/directory/common/distinguished_name.h"
#include "suite/directory/ldap/failures.h"

namespace orvo::directory::ldap {

ServerLogin::ServerLogin(TextView server, TextView user, TextView password,
                         const std::optional<Limits>& limits)
    : limits_(limits), presented_(password) {
    const ServerAddress address = ServerAddress::parse(server);
    if (presented_->empty() && !user.empty())
        raise_code(result_code::invalid_credentials, "A password is required.");
    // The client library would read on only as far as there.
    if (user.find(u'\0') != TextView::npos)
        raise_code(result_code::invalid_credentials, "The user's name holds a NUL.");
    credentials_ =
        ConnectionPool::of_process().enter(address, to_utf8(full_name(user)), *presented_);
}

Lease ServerLogin::take() {
    if (own_) return *std::exchange(own_, std::nullopt);
    ConnectionPool& pool = ConnectionPool::of_process();
    if (!presented_) return pool.lease(credentials_, limits_);
    Lease lease = pool.lease_presented(credentials_, *presented_, limits_);
    presented_.reset();
    return lease;
}

void ServerLogin::keep(Lease&& lease) {
    if (lease.is_shared())
        std::move(lease).give_back();
    else
        own_ = std::move(lease);
}

void ServerLogin::password_changed(const std::string& entry, const Secret& password) {
    ConnectionPool::of_process().password_changed(entry, password, credentials_);
}

}  // namespace orvo::directory::ldap
