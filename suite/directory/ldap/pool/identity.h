#pragma once

// Whose connections they are.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/ldap/pool/password_digest.h"
#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/names/entry_key.h"

namespace orvo::directory::ldap {

class ConnectionPool;

// A connection, and since when it is one.
struct Connection {
    Session session;
    std::chrono::steady_clock::time_point opened;
    std::chrono::steady_clock::time_point used = {};  // when it was given back the last time
    // Whether a password check asks for the policy, and since when that is known.
    Policy policy = Policy::asked;
    std::optional<std::chrono::steady_clock::time_point> policy_learnt = {};
};
struct IdleConnection;
using IdleList = std::list<IdleConnection>;

// That the server accepted the user's password: when it was asked, and what this process had
// written to the user's entry by then (write_mark).
struct Acceptance {
    std::chrono::steady_clock::time_point at;
    std::uint64_t write_mark = 0;
};

// A user of a server with one password, or the password checks of a server: what has a set of
// connections in the pool. Lives as long as somebody works with it or the pool has idle connections
// of it.
class Identity {
public:
    enum class Kind { user, password_checks };

    Identity(Kind kind, ServerAddress server, std::string user, const PasswordDigest& digest);
    Identity(const Identity&) = delete;

    Kind kind() const { return kind_; }
    const ServerAddress& server() const { return server_; }
    const std::string& server_key() const { return server_key_; }
    const std::string& user() const { return user_; }
    // The user's entry.
    const EntryKey& user_key() const { return user_key_; }
    // Held while the user changes the own password, from asking the server to noting the new one:
    // of two who do so at once the later is the one that counts, here as there.
    std::recursive_mutex& password_turn() { return password_turn_; }
    // Whether the server has left unanswered what it is. Any thread.
    bool is_silent() const { return is_silent_.load(std::memory_order_relaxed); }
    void note_silence() { is_silent_.store(true, std::memory_order_relaxed); }

private:
    friend class ConnectionPool;

    const Kind kind_;
    const ServerAddress server_;
    const std::string server_key_;
    const std::string user_;
    const EntryKey user_key_;
    std::recursive_mutex password_turn_;
    std::atomic<bool> is_silent_ = false;

    // The rest is the pool's, under its lock.
    PasswordDigest digest_;
    // The password, of those who work with it: it is forgotten when the last of them goes.
    std::weak_ptr<Secret> password_;
    std::optional<Acceptance> accepted_;
    // Counts the times that connections lost their worth; one leased before is not taken back.
    std::uint64_t generation_ = 0;
    std::size_t open_ = 0;                  // idle and leased
    std::vector<IdleList::iterator> idle_;  // the latest last
    // Idle ones that are not counted, where there is no pool: the latest last.
    IdleList kept_;
    // Those who wait for a place, in the order in which they came.
    std::list<std::condition_variable> waiting_;
};

// What it takes to work as somebody.
struct Credentials {
    std::shared_ptr<Identity> identity;
    // Shared by all who have the same; the pool's, under its lock. None for password checks.
    std::shared_ptr<Secret> password;
};

// A connection that waits for work.
struct IdleConnection {
    std::shared_ptr<Identity> identity;  // none where it goes with the identity
    Connection connection;
};

}  // namespace orvo::directory::ldap
