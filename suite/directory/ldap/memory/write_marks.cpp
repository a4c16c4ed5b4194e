#include "suite/directory/ldap/memory/write_marks.h"

#include <array>
#include <atomic>
#include <functional>

namespace orvo::directory::ldap {
namespace {

// Entries share them.
std::array<std::atomic<std::uint64_t>, 1024> marks;
std::atomic<std::uint64_t> writes_to_any;
std::atomic<std::uint64_t> all_writes;

std::atomic<std::uint64_t>& mark_of(const EntryKey& entry) {
    return marks[std::hash<std::string>()(entry.loose) % marks.size()];
}

}  // namespace

// Counts only grow, and so does the sum of two.
std::uint64_t write_mark(const EntryKey& entry) {
    return entry.loose.empty() ? all_writes.load() : mark_of(entry).load() + writes_to_any.load();
}

void note_write(const EntryKey& entry) {
    (entry.loose.empty() ? writes_to_any : mark_of(entry)).fetch_add(1);
    all_writes.fetch_add(1);
}

}  // namespace orvo::directory::ldap
