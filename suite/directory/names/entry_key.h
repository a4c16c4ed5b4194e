#pragma once

#include <string>
#include <string_view>

namespace orvo::directory {

// What an entry is known by where names are compared: with it, and with what this process has noted
// of it. Made of a name as a server is given it.
struct EntryKey {
    explicit EntryKey(std::string_view name);

    // Names of one entry for certain (DistinguishedName), however it is called.
    bool operator==(const EntryKey&) const = default;
    // Whether it cannot be ruled out that a server takes them for one entry. A name that cannot be
    // read here may be any entry's.
    bool may_be(const EntryKey& other) const {
        return loose.empty() || other.loose.empty() || loose == other.loose;
    }

    std::string exact;  // DistinguishedName::key(), or a name that cannot be read as it is
    std::string loose;  // DistinguishedName::loose_key(); empty: it may be any entry's
};

}  // namespace orvo::directory
