#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "suite/directory/ldap/pool/identity.h"

namespace orvo::directory::ldap {

class ConnectionPool;

// Raises the failure of a bind that was not accepted. Whoever cannot be bound has the wrong
// credentials (0x8007052E), whatever a server calls it.
void check_bind(const Result& bind);

// A connection that is one caller's, until it is given back or the lease ends. One that ends
// without being given back closes its connection: what becomes of it after a failure or in the
// middle of an operation is nobody's concern. Used by one thread at a time.
class Lease {
public:
    Lease(Lease&& other) noexcept;
    Lease& operator=(Lease&& other) noexcept;
    ~Lease();

    Session& session() { return connection_.front().connection.session; }
    // Whether the connection is the pool's, and counted.
    bool is_shared() const { return is_shared_; }

    // A bind that checks a password. What the server's policy says of the account is asked with it,
    // but where an accepted password has shown within the last RecheckAfter that the server of this
    // connection neither answers the question nor lists it in its root entry, which is read for
    // that. Check and reading end within the operation's limit; where the reading fails the check
    // counts all the same and the connection is not kept. A server that did not answer the reading
    // within half the limit is always asked from then on.
    BindResult check_password(const std::string& name, const Secret& password);

    // A new connection in place of this one, authenticated as before. Raises what connecting and
    // authenticating do.
    void reopen();

    // The connection is good, and idle; where there is none any more, the lease just ends.
    void give_back() &&;

private:
    friend class ConnectionPool;
    Lease(ConnectionPool& pool, const Credentials& credentials, const Limits& limits);

    void open();
    std::optional<Policy> learnt_from(const BindResult& accepted,
                                      std::chrono::steady_clock::time_point begin);
    Result authenticate(const Secret& password, const PasswordDigest& digest);
    void end() noexcept;

    ConnectionPool* pool_;
    Credentials credentials_;
    Limits limits_;
    IdleList connection_;  // one, or none
    std::uint64_t generation_ = 0;
    bool is_shared_ = false;
    // How long it counts whether a server knows a policy; 0: it is always asked.
    std::chrono::seconds policy_lasts_{0};
};

}  // namespace orvo::directory::ldap
