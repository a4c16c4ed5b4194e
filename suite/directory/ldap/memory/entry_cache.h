#pragma once

// Entries that were read, kept for a while for all of the process. Off until it is given room.

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/automation/variant.h"
#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/names/entry_key.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory::ldap {

struct CacheSettings {
    std::size_t entries = 0;  // 0: nothing is kept
    std::chrono::seconds time_to_live{60};
};

// The settings changed by what InitializeCache is given; those that are not named stay. Raises what
// read_numbers raises.
//
//   Entries       0 to 1000000          TimeToLive    seconds, 1 to 86400
CacheSettings changed(CacheSettings settings, const Variant& names, const Variant& values);

// Which entry, and who sees it so.
struct CacheKey {
    std::string server;  // ServerAddress::key()
    std::string user;    // with whose rights it was read
    std::string entry;   // its name, as it was asked for
    EntryKey mark;       // for write_mark
};

// What is known of an entry: attributes with their values, and names that were asked for, of which
// it has those that are among the attributes and lacks the others. Never secrets (is_secret).
// Immutable once it is kept.
struct KnownEntry {
    std::vector<Attribute> attributes;
    std::vector<std::string> asked;
    // Whether all attributes came along that come without being asked for by name: of those that
    // the schema knows the entry then lacks what is not among them.
    bool is_whole = false;

    // The values of an attribute, by any of its names; none where the entry is known to lack it.
    // Nothing where that is not known.
    std::optional<std::vector<std::string>> try_values(const std::string& name,
                                                       const AttributeTypes& types) const;
    void forget_secrets();
};

// The entries that were asked for last, so many of them, each until it is as old as allowed or this
// process has written to it. What other processes write is not seen before. Passwords are never
// kept. Any thread.
class EntryCache {
public:
    static EntryCache& of_process();

    CacheSettings settings() const;
    // All of what is given, or nothing of it.
    void configure(const Variant& names, const Variant& values);
    // Costs nothing.
    bool is_on() const { return is_on_.load(std::memory_order_relaxed); }

    std::shared_ptr<const KnownEntry> find(const CacheKey& key);
    // Adds what was read to what is known, but for passwords. `read_at` and `write_mark` are from
    // before the reading: what was read while this process wrote is not found again.
    void add(const CacheKey& key, KnownEntry read, std::chrono::steady_clock::time_point read_at,
             std::uint64_t write_mark);

private:
    struct Kept {
        std::string key;
        std::shared_ptr<const KnownEntry> entry;
        std::chrono::steady_clock::time_point read_at;  // of its oldest part
        std::uint64_t write_mark;
    };
    using Order = std::list<Kept>;

    Order::iterator find_kept(const std::string& key, std::uint64_t write_mark);
    void drop(Order::iterator kept);
    void keep_within_bounds();

    std::atomic<bool> is_on_ = false;
    mutable std::mutex mutex_;
    CacheSettings settings_;
    Order order_;  // the latest used first
    std::unordered_map<std::string, Order::iterator> by_key_;
};

}  // namespace orvo::directory::ldap
