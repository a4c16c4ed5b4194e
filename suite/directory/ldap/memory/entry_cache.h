#pragma once

// Entries that were read, kept for a while for all of the process.

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

#include "platform/values/variant.h"
#include "suite/directory/entries/entry_data.h"
#include "suite/directory/ldap/memory/write_marks.h"
#include "suite/directory/names/entry_key.h"
#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/settings/cache_settings.h"
#include "suite/directory/settings/clock.h"

namespace orvo::directory::ldap {

// Which entry, and who sees it so.
struct CacheKey {
    std::string server;  // ServerAddress::key()
    std::string user;    // with whose rights it was read
    std::string entry;   // its name, as it was asked for
    EntryKey mark;       // for WriteMarks
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

// An entry as it was read, and when: it is shared, and the object that asked for it may go on with
// it for as long as it is current.
struct Remembered {
    std::shared_ptr<const KnownEntry> entry;  // null: nothing
    Clock::time_point read_at;                // of its oldest part
    std::uint64_t write_mark = 0;             // of the entry, from before it was read
};

// What was read of entries, for all of the process. Without room for entries (the default) what a
// bind has fetched is kept for `bind_lasts`; with room, whatever was read is kept until it is as
// old as allowed, the least recently used being evicted. What this process writes to an entry
// invalidates it at once; what others write is not seen before. Passwords are never kept.
// Thread-safe.
class EntryCache {
public:
    static constexpr std::chrono::milliseconds bind_lasts{250};

    EntryCache(const Clock& clock, const WriteMarks& writes) : clock_(clock), writes_(writes) {}
    EntryCache(const EntryCache&) = delete;

    CacheSettings settings() const;
    // All of what is given, or nothing of it.
    void configure(const Variant& names, const Variant& values);
    // Forgets all that is kept; how many entries that were. What an object has in hand stays.
    std::size_t clear();
    // Whether there is room for entries. Costs nothing.
    bool is_on() const { return is_on_.load(std::memory_order_relaxed); }

    Remembered find(const CacheKey& key);
    // Adds what was read to what is known, but for passwords: what is known of the entry now.
    // `read_at` and `write_mark` are from before the reading, so that what was read while this
    // process wrote is not found again.
    Remembered add(const CacheKey& key, KnownEntry read, Clock::time_point read_at,
                   std::uint64_t write_mark);
    bool is_current(const Remembered& known, const EntryKey& entry) const;

    // How often find() has found something, and how often nothing; how many entries are kept.
    struct Counts {
        std::uint64_t hits;
        std::uint64_t misses;
        std::size_t entries;
    };
    Counts counts() const;

private:
    struct Kept {
        std::string key;
        Remembered known;
    };
    using Order = std::list<Kept>;

    std::chrono::milliseconds lifetime() const {
        return std::chrono::milliseconds(lifetime_.load(std::memory_order_relaxed));
    }
    Order::iterator find_kept(const std::string& key, const EntryKey& entry);
    void drop(Order::iterator kept);
    void evict();

    const Clock& clock_;
    const WriteMarks& writes_;
    std::atomic<bool> is_on_ = false;
    std::atomic<std::int64_t> lifetime_ = bind_lasts.count();
    mutable std::mutex mutex_;
    CacheSettings settings_;
    std::uint64_t hits_ = 0;
    std::uint64_t misses_ = 0;
    Order order_;  // the latest used first
    std::unordered_map<std::string, Order::iterator> by_key_;
};

}  // namespace orvo::directory::ldap
