#pragma once

#include <optional>

#include "suite/directory/ldap/pool/connection_pool.h"

namespace orvo::directory::ldap {

// A place in a connection set, and the connection that is there. A lease that ends without being
// released closes its connection: what becomes of it after a failure is nobody's concern. Used by
// one thread.
class Lease {
public:
    // Waits for a place; raises what ConnectionSet::acquire_place does.
    Lease(ConnectionPool& pool, ConnectionSetRef set);
    Lease(const Lease&) = delete;
    ~Lease();

    const PoolSettings& settings() const { return settings_; }
    ConnectionSet& set() const { return *set_; }
    // The set's generation when the place was taken.
    std::uint64_t generation() const { return generation_; }

    // For who has to wait for somebody that may be waiting for a place: without one, and a
    // connection, until `acquire_place`, which waits and raises as the constructor does.
    void release_place();
    void acquire_place();

    // Takes an idle connection to the server, where there is one that looks alive. One that was
    // used a moment ago is looked at only with `sure`.
    enum class Care { usual, sure };
    bool take_idle(const ServerRef& server, Care care);
    // Takes one that was another user's, and looks alive, for it to be bound anew; see
    // ConnectionPool::take_from_others.
    bool take_from_others(const ServerRef& server);
    // Takes one that a password check has just authenticated as the set's user; see
    // ConnectionPool::take_checked.
    bool take_checked(const ServerRef& server);
    // Takes this connection in place of the one that is there.
    void put(Connection connection) { connection_.emplace(std::move(connection)); }
    bool has_place() const { return has_place_; }
    bool has_connection() const { return connection_.has_value(); }
    Connection& connection() { return *connection_; }
    void close() { connection_.reset(); }

    // The connection is good; it becomes idle, and the lease is over.
    void release();

private:
    ConnectionPool& pool_;
    ConnectionSetRef set_;
    PoolSettings settings_;
    std::uint64_t generation_ = 0;
    bool has_place_ = false;
    std::optional<Connection> connection_;
};

}  // namespace orvo::directory::ldap
