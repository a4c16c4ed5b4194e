#pragma once

#include <cstdint>
#include <utility>

#include "suite/directory/names/entry_key.h"

namespace orvo::directory::ldap {

// Which entries this process has written to, so that what was read before is not taken for fresh.
// An entry's mark changes with every write to it, under whatever name (EntryKey::may_be), and now
// and then with a write to another entry, which costs a reading that was not needed and nothing
// else. Any thread.
std::uint64_t write_mark(const EntryKey& entry);
void note_write(const EntryKey& entry);

// Notes a write when it is over, whatever came of it: one that timed out may have been done.
class NotedWrite {
public:
    explicit NotedWrite(EntryKey entry) : entry_(std::move(entry)) {}
    ~NotedWrite() { note_write(entry_); }
    NotedWrite(const NotedWrite&) = delete;

private:
    EntryKey entry_;
};

}  // namespace orvo::directory::ldap
