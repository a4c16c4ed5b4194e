#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "suite/directory/ldap/provider/mapped_directory.h"
#include "suite/directory/map/mapped_filter.h"

namespace orvo::directory::ldap {

// Values that come from groups. Of one entry: the groups are asked whose member it is, from the
// entry upwards. Of many: the members of each group are read once, from the group downwards. A
// group that is not there has no members. Used by one thread.
class MappedGroups {
public:
    explicit MappedGroups(MappedDirectory& directory) : directory_(directory) {}

    // What has to be known of the entry of this name, beside the name, to tell its groups.
    std::vector<std::string> asked(const std::string& entry) const;

    // Our values that an entry of theirs has, of which `theirs` holds what `asked` names.
    using Known = MappedDirectory::Known;
    std::vector<std::string> values_of(const MappedAttribute& ours, const EntryData& theirs,
                                       Known known = Known::used);

    // For a search: reads the members of the groups of our attribute, where the server does not
    // answer for them itself.
    void load(const MappedAttribute& ours);
    // Of entries, and in filters, once they are loaded.
    std::vector<std::string> loaded_values(const MappedAttribute& ours,
                                           const EntryData& theirs) const;
    std::optional<MappedFilter> condition(const MappedGroup& group) const;

    // Makes the entry a member of the groups of these values, and of no others of our attribute:
    // one change of each group that is not yet as it should be, with the rights of `by`. An empty
    // value and "0" name no group. Raises result code 53 where groups are read-only and where a
    // value is held through a group in a group, 19 for a value that has no group, before anything
    // is changed; where the server refuses a change, its failure, which names the group and says
    // whether others have been changed.
    void assign(const MappedAttribute& ours, const EntryData& theirs,
                const std::vector<std::string>& values, WriteMarks& writes, ServerLogin& by);

private:
    using Names = std::unordered_set<std::string>;  // in their comparable form

    bool is_told_by_entries() const;
    bool has_chain_rule() const;
    std::string member_of(const EntryData& theirs) const;
    std::string comparable(std::string_view member) const;
    std::vector<std::string> groups_with(const std::vector<std::string>& members,
                                         const std::string& rule, Known known);
    Names groups_of(const EntryData& theirs, std::size_t nesting, Known known);
    Names members_of(const MappedGroup& group);
    std::vector<std::string> listed_members(const std::string& group);

    MappedDirectory& directory_;
    struct Loaded {
        Names members;
        std::vector<std::string> written;  // the same, as they are written
    };
    std::unordered_map<std::string, Loaded> loaded_;  // by the group's comparable name
};

}  // namespace orvo::directory::ldap
