#pragma once

// The servers of one server setting.

#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "suite/directory/ldap/pool/server.h"
#include "suite/directory/names/entry_key.h"

namespace orvo::directory::ldap {

using ServerRef = std::shared_ptr<Server>;

// Servers that hold the same directory, in order of preference. Thread-safe.
class ServerGroup {
public:
    // `key`: ServerAddress::key().
    ServerGroup(std::string key, std::vector<ServerRef> servers);

    const std::string& key() const { return key_; }
    const std::vector<ServerRef>& servers() const { return servers_; }

    // The server that an operation goes to: the first that is steady, otherwise the first that is
    // up; where none is, the one that failed longest ago. Those in `tried` are left out; null where
    // that leaves none.
    ServerRef choose(std::chrono::seconds failback_after,
                     std::span<const ServerRef> tried = {}) const;
    // The same among those that are up.
    ServerRef choose_up(std::chrono::seconds failback_after,
                        std::span<const ServerRef> tried) const;

    // The server of this list that one of these URLs names; null where there is none.
    ServerRef referred_to(std::span<const std::string> urls) const;

    // This process has written to the entry of this name on the server: until `until` the entry is
    // read there (last_written_on), since the others may not have been told yet.
    void note_write(const EntryKey& entry, const ServerRef& server, Clock::time_point until);
    // Where to read the entry of this name, for what this process has written to it to be seen;
    // null where any server will do, or that one is not up.
    ServerRef last_written_on(const EntryKey& entry) const;

private:
    struct Write {
        ServerRef server;
        Clock::time_point until;
    };

    const std::string key_;
    const std::vector<ServerRef> servers_;
    std::atomic<bool> has_writes_ = false;
    mutable std::mutex mutex_;
    std::unordered_map<std::string, Write> writes_;  // by EntryKey::loose
    Clock::time_point prune_at_;
};

}  // namespace orvo::directory::ldap
