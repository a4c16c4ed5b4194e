#pragma once

// All servers of the process.

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "suite/directory/ldap/pool/server_group.h"
#include "suite/directory/settings/clock.h"

namespace orvo::directory::ldap {

// Finds servers and groups by their addresses and probes those that are not up. A probe is a
// request of our own, on a connection of its own, so that no user waits for a server that is known
// to be silent. Thread-safe.
class Servers {
public:
    // Asks a server whether it is well (see probe); nothing where it is, otherwise why it is not.
    using Probe = std::function<std::optional<std::string>(const ServerHost&)>;

    // `wake` is called when there is a server to be probed at once.
    Servers(const Clock& clock, Probe probe, std::function<void()> wake);

    std::shared_ptr<ServerGroup> group(const ServerAddress& address);
    // An operation on the server failed; see Server::note_failure.
    void note_failure(Server& server, const std::string& reason);
    // Probes the server that has been due for longest, of those whose group somebody holds, if one
    // is; returns when the next one is due, which may be now, or nothing where none will be. Called
    // by one thread at a time.
    std::optional<Clock::time_point> probe_due(std::chrono::seconds failback_after);
    // Of all servers that somebody has worked with, in no order.
    std::vector<ServerState> states() const;

private:
    std::vector<ServerRef> in_use() const;

    const Clock& clock_;
    const Probe probe_;
    const std::function<void()> wake_;
    std::mt19937 random_{std::random_device()()};  // the probing thread's
    mutable std::mutex mutex_;
    std::unordered_map<std::string, ServerRef> servers_;  // by the key of the address
    std::unordered_map<std::string, std::weak_ptr<ServerGroup>> groups_;
};

}  // namespace orvo::directory::ldap
