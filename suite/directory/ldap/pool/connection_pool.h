#pragma once

// The connections of the process: shared by its objects, operation by operation.
//
// Whoever has something to do on a server leases a connection that is authenticated as its user,
// for one operation, and gives it back. Nobody holds a lease while waiting for another, so that
// waiting always ends; whoever has waited longest is served first. A connection never changes hands
// between two users: there is a set of them for each user of each server, and among users with one
// name for each password. Password checks have a set of their own for each container of users of
// each server, on which every check is a bind of its own and nothing else is done but to read the
// server's root entry (see Lease::check_password).
//
// Where the pool is switched off (a maximum of 0) nothing is counted, and a connection that is
// given back is closed with the last object that works with the same credentials.
//
// Connections that have been idle or alive for too long are closed whenever one is leased or given
// back (without the pool, one with the same credentials). There is no thread for it: what nobody
// asks for costs the process a socket and the server closes it when it pleases, which is noticed
// before it is used again.
//
// Any thread. Nothing waits for the server under the pool's lock.

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "suite/directory/ldap/pool/lease.h"
#include "suite/directory/ldap/settings/pool_settings.h"

namespace orvo::directory::ldap {

class ConnectionPool {
public:
    static ConnectionPool& of_process();

    ConnectionPool() = default;
    ConnectionPool(const ConnectionPool&) = delete;

    PoolSettings settings() const;
    // See `changed`: all of what is given, or nothing of it. What is idle beyond the new limits is
    // closed as connections come and go; with a maximum of 0 at once.
    void configure(const Variant& names, const Variant& values);

    // The set of a user's connections. Both empty: nobody's.
    Credentials enter(const ServerAddress& server, const std::string& user, const Secret& password);
    // The set of a server's connections for password checks of users below `container`.
    Credentials password_checks(const ServerAddress& server, const std::string& container);

    // A connection, authenticated as the user of the set (for checks: as anybody or nobody).
    // `limits`: instead of those of the settings. Raises result code 51 where none becomes free in
    // time, the server's failure where a new one cannot be made, 0x8007052E for credentials that
    // are not right any more.
    Lease lease(const Credentials& credentials, const std::optional<Limits>& limits);
    // The same for somebody who presents the password. The server is asked about it, unless it
    // accepted just this one not longer ago than the settings allow, and this process has not
    // written to the user's entry since. A refusal closes the set's idle connections.
    Lease lease_presented(const Credentials& credentials, const Secret& presented,
                          const std::optional<Limits>& limits);

    // This process has changed the password of the user whose entry this is or may be, working as
    // `by`; with an empty one: the user has none any more, is not there any more or is somebody
    // new. Nothing is done again on the user's connections that were made before: a server may
    // still restrict them, or take them for those of the new user. Where the password is another by
    // the user's own doing, which is certain only of names that are equal, those who work with the
    // same credentials go on with it.
    void password_changed(const EntryKey& entry, const Secret& password, const Credentials& by);

private:
    friend class Lease;
    // Taken out of the pool under its lock, and closed after it.
    using Closing = IdleList;

    std::shared_ptr<Identity> find_or_make(Identity::Kind kind, const std::string& key,
                                           const ServerAddress& server, const std::string& user,
                                           const PasswordDigest& digest);
    Lease place_for(const Credentials& credentials, const std::optional<Limits>& limits);
    // Whether it took waiting.
    bool wait_for_place(Identity& identity, std::unique_lock<std::mutex>& lock);
    static void wake_next(Identity& identity);
    // One, or none.
    IdleList take_idle(Identity& identity);
    void close_old(std::chrono::steady_clock::time_point now, Closing& closing);
    void close_oldest(Closing& closing);
    void close_all(Identity& identity, Closing& closing);

    bool is_trusted(const Identity& identity, const PasswordDigest& digest) const;
    void was_accepted(const Lease& lease, const PasswordDigest& digest,
                      const Acceptance& acceptance);
    void was_refused(const Lease& lease, const PasswordDigest& digest);
    Secret password_of(const Credentials& credentials, PasswordDigest& digest) const;
    void take_back(Lease& lease);
    void leave(const Lease& lease);

    mutable std::mutex mutex_;
    PoolSettings settings_;
    // By server and user; the sets that are in use or have idle connections.
    std::unordered_map<std::string, std::vector<std::weak_ptr<Identity>>> identities_;
    std::size_t clean_at_ = 64;
    IdleList idle_;  // in the order in which they were given back
};

}  // namespace orvo::directory::ldap
