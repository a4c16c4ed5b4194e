#pragma once

#include <cstdint>
#include <string_view>

namespace orvo::directory::ldap {

// Which entries this process has written to, so that what was read before is not taken for fresh.
// An entry's mark changes with every write to it (and, seldom, with a write to another entry, which
// costs a reading that was not needed and nothing else). `entry` is DistinguishedName::key(). Any
// thread.
std::uint64_t write_mark(std::string_view entry);
void note_write(std::string_view entry);

}  // namespace orvo::directory::ldap
