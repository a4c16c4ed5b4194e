#pragma once

// The connections of the process, shared by its objects operation by operation.
//
// Whoever has something to do on a server acquires a lease for one operation. Nobody holds a lease
// while waiting for another, so waiting always ends. There is a ConnectionSet for each user with
// one password, and one for the password checks below each container, on each group of servers.
// Users share no connection; where there are more users than connections may be idle, one that
// somebody has not used for longest is bound anew, as another user, instead of being closed. A
// connection on which a user's password was just found right is the user's who logs in with it.
//
// A set lives as long as an object works with it, it has idle connections, or the server has just
// refused its credentials. With PoolSettings::maximum_size 0 nothing is pooled: idle connections
// are closed with the last object that works with the set.
//
// Connections that are idle or alive for too long are closed when one is acquired or released.
// There is no thread for it: of a connection that nobody asks for the server may close its end,
// which is noticed before it is used again.

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/values/variant.h"
#include "suite/directory/ldap/pool/connection_set.h"
#include "suite/directory/ldap/pool/servers.h"

namespace orvo::directory::ldap {

using ConnectionSetRef = std::shared_ptr<ConnectionSet>;

// Thread-safe. Nothing waits for a server under the pool's lock.
class ConnectionPool {
public:
    ConnectionPool(const Clock& clock, WriteMarks& writes, Servers& servers);
    ConnectionPool(const ConnectionPool&) = delete;

    const Clock& clock() const { return clock_; }
    const WriteMarks& writes() const { return writes_; }
    PlaceWaits& waits() { return waits_; }
    Servers& servers() { return servers_; }
    PoolSettings settings() const { return settings_.get(); }
    // Changes what is given, all or nothing of it; see `changed`. What is idle beyond the new
    // limits is closed as connections come and go; with a maximum of 0 at once.
    void configure(const Variant& names, const Variant& values);

    // The connections of a user; name and password both empty: nobody's.
    ConnectionSetRef set_of(const ServerAddress& address, const std::string& user,
                            const Secret& password);
    // The connections for password checks of users below `container`.
    ConnectionSetRef checks_below(const ServerAddress& address, const std::string& container);

    // Those that are alive, in no order.
    std::vector<ConnectionSetRef> all_sets() const;

    // Before a connection of the set is used: closes what is idle for too long, anywhere.
    void tidy(ConnectionSet& set);
    // After a connection of the set has become idle.
    void keep(const ConnectionSetRef& set);
    // For a user who has no idle connection, where as many are idle as may be and one would have to
    // be closed for a new one: the least recently used connection of another user to this server,
    // to be bound anew. Nothing where there are fewer.
    std::optional<Connection> take_from_others(const ServerRef& server);
    // For a user who has no idle connection: one that a password check has authenticated with these
    // credentials within RecheckAfter, which the set notes as accepted.
    std::optional<Connection> take_checked(ConnectionSet& user, const ServerRef& server,
                                           std::uint64_t generation);
    // The server has refused the set's credentials: they are remembered for RecheckAfter.
    void remember_refusal(const ConnectionSetRef& set);

    // Call after a write that may have changed a password.
    //   entry     the entry written; every user that it may belong to is affected
    //   password  the new one; empty: removed, not known, or the entry is gone or replaced
    //   by        who wrote; goes on with a changed password of its own
    // What was opened with the affected users' credentials is not used again: a server may still
    // restrict it, or take it for somebody's who has the name no more.
    void password_changed(const EntryKey& entry, const Secret& password,
                          const ConnectionSetRef& by);

private:
    struct Idle {
        ConnectionSetRef set;
        Clock::time_point used;  // when a connection of it was last released
    };
    using IdleSets = std::list<Idle>;
    // Let go of without the lock: their ends, and those of their connections, may be theirs.
    using Dropped = std::vector<ConnectionSetRef>;
    struct Refused {
        ConnectionSetRef set;
        Clock::time_point until;
    };

    ConnectionSetRef find_or_make(ConnectionSet::Use use, std::string key,
                                  std::shared_ptr<ServerGroup> group, const std::string& user,
                                  const Secret& password);
    // What has been idle for too long; and what is too many, the least recently used first.
    void evict_unused(const PoolSettings& settings, Clock::time_point now, Dropped& dropped);
    void evict_idle(const PoolSettings& settings, Clock::time_point now, Dropped& dropped);
    // Out of the sets with idle connections; the set's end may be the caller's.
    ConnectionSetRef drop(IdleSets::iterator place);
    std::size_t count_idle() const;

    const Clock& clock_;
    WriteMarks& writes_;
    Servers& servers_;

    SharedSettings settings_;
    PlaceWaits waits_;
    mutable std::mutex mutex_;
    // By group and user: the sets that are alive.
    std::unordered_map<std::string, std::vector<std::weak_ptr<ConnectionSet>>> sets_;
    std::size_t clean_at_ = 64;
    IdleSets idle_;  // that have idle connections, the latest used last
    std::unordered_map<const ConnectionSet*, IdleSets::iterator> idle_places_;
    std::list<Refused> refused_;  // the latest last
};

}  // namespace orvo::directory::ldap
