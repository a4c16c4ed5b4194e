#pragma once

#include <optional>
#include <string>

#include "platform/automation/secret.h"
#include "suite/directory/common/result_codes.h"
#include "suite/directory/ldap/connection_pool.h"

namespace orvo::directory::ldap {

// Who works on which server: an object's way to its connections. They come from the pool of the
// process, one operation at a time; where that is switched off (MaximumSize 0), the object has a
// connection of its own from its first operation on. Used by one thread.
class ServerLogin {
public:
    // `limits`: instead of those that the pool has for all. Both credentials empty: as nobody.
    // Raises 0x8007052E for a name with an empty password, which the server is not asked about (it
    // would take that for nobody and report success), and result code 89 for a server that cannot
    // be read.
    ServerLogin(TextView server, TextView user, TextView password,
                const std::optional<Limits>& limits);

    // Runs an operation, from Session& to a kind of Result, and once more on a new connection where
    // the server has closed the one it had. The first one that comes about has authenticated the
    // user; see ConnectionPool::lease_presented.
    template <class Operation>
    auto run(Operation operation) {
        Lease lease = take();
        auto result = operation(lease.session());
        if (result.code == result_code::server_down) {
            lease.reopen();
            result = operation(lease.session());
        }
        if (!result.connection_failed()) keep(std::move(lease));
        return result;
    }

    // Authenticates the user, and nothing else.
    void authenticate() {
        run([](Session&) { return Result(); });
    }

    const std::string& server_key() const { return credentials_.identity->server_key(); }
    const std::string& user() const { return credentials_.identity->user(); }

    // This object has changed the password of the user whose entry this is (DistinguishedName::
    // key()).
    void password_changed(const std::string& entry, const Secret& password);

private:
    Lease take();
    void keep(Lease&& lease);

    std::optional<Limits> limits_;
    Credentials credentials_;
    std::optional<Secret> presented_;  // until the server has accepted it
    std::optional<Lease> own_;
};

}  // namespace orvo::directory::ldap
