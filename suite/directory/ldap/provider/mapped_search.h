#pragma once

#include <optional>
#include <string>
#include <vector>

#include "suite/directory/filters/filter_match.h"
#include "suite/directory/ldap/provider/mapped_groups.h"

namespace orvo::directory::ldap {

// One search in a directory with a map: what the server is asked, and what its answers are to us.
// Reads members of groups that the search is about. Used by one thread.
class MappedSearch {
public:
    // `filter` and `attributes` are ours.
    MappedSearch(MappedDirectory& directory, const std::string& base, const Filter& filter,
                 std::vector<std::string> attributes);

    const std::string& filter() const { return filter_; }
    const std::vector<std::string>& attributes() const { return attributes_; }

    // The entry as we know it; nothing where our filter is not true of it.
    std::optional<EntryData> ours(EntryData&& theirs) const;

private:
    MappedDirectory& directory_;
    MappedGroups groups_;
    std::vector<std::string> wanted_;  // ours
    std::vector<std::string> attributes_;
    std::string filter_;
    std::optional<FilterMatcher> matcher_;  // where the server's answers are not enough
};

}  // namespace orvo::directory::ldap
