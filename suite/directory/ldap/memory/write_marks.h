#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <utility>

#include "suite/directory/names/entry_key.h"

namespace orvo::directory::ldap {

// Which entries this process has written to, so that what was read before is not taken for fresh.
// An entry's mark changes with every write to it, under whatever name (EntryKey::may_be), and now
// and then with a write to another entry, which costs a reading that was not needed and nothing
// else. Thread-safe.
class WriteMarks {
public:
    std::uint64_t mark(const EntryKey& entry) const;
    void note(const EntryKey& entry);

private:
    std::array<std::atomic<std::uint64_t>, 1024> marks_{};  // entries share them
    std::atomic<std::uint64_t> writes_to_any_ = 0;
    std::atomic<std::uint64_t> all_writes_ = 0;
};

// Notes a write when it is over, whatever came of it: one that timed out may have been done.
class NotedWrite {
public:
    NotedWrite(WriteMarks& marks, EntryKey entry) : marks_(marks), entry_(std::move(entry)) {}
    ~NotedWrite() { marks_.note(entry_); }
    NotedWrite(const NotedWrite&) = delete;

private:
    WriteMarks& marks_;
    EntryKey entry_;
};

}  // namespace orvo::directory::ldap
