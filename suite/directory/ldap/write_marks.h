#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace orvo::directory::ldap {

// Which entries this process has written to, so that what was read before is not taken for fresh.
// An entry's mark changes with every write to it (and, seldom, with a write to another entry, which
// costs a reading that was not needed and nothing else). `entry` is DistinguishedName::key(). Any
// thread.
std::uint64_t write_mark(std::string_view entry);
void note_write(std::string_view entry);

// Notes a write when it is over, whatever came of it: one that timed out may have been done.
class NotedWrite {
public:
    explicit NotedWrite(std::string entry) : entry_(std::move(entry)) {}
    ~NotedWrite() { note_write(entry_); }
    NotedWrite(const NotedWrite&) = delete;

private:
    std::string entry_;
};

}  // namespace orvo::directory::ldap
