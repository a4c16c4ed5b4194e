#include "suite/directory/ldap/memory/write_marks.h"

#include <functional>

namespace orvo::directory::ldap {
namespace {

std::size_t place_of(const EntryKey& entry, std::size_t places) {
    return std::hash<std::string>()(entry.loose) % places;
}

}  // namespace

// Counts only grow, and so does the sum of two.
std::uint64_t WriteMarks::mark(const EntryKey& entry) const {
    if (entry.loose.empty()) return all_writes_.load();
    return marks_[place_of(entry, marks_.size())].load() + writes_to_any_.load();
}

void WriteMarks::note(const EntryKey& entry) {
    if (entry.loose.empty())
        writes_to_any_.fetch_add(1);
    else
        marks_[place_of(entry, marks_.size())].fetch_add(1);
    all_writes_.fetch_add(1);
}

}  // namespace orvo::directory::ldap
