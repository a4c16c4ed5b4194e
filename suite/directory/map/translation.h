#pragma once

// Names of attributes, entries and changes between ours and theirs (directory_map.h).

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/map/directory_map.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory {

// The types of our attributes beside those that a server knows.
AttributeTypes with_our_types(const AttributeTypes& server);

// Our values, of those of an attribute that comes from groups, that an entry of theirs has.
using GroupValues =
    std::function<std::vector<std::string>(const MappedAttribute& ours, const EntryData& theirs)>;

// Keeps both, which live as long; used by one thread.
class Translation {
public:
    // `types`: with_our_types.
    Translation(const DirectoryMap& map, const AttributeTypes& types) : map_(map), types_(types) {}

    // What to ask a server for, to have these of ours; no name twice. "*" is all of ours.
    std::vector<std::string> asked(std::span<const std::string> ours) const;

    // An entry as we know it: with our names and values. Of users, defaults count for those that
    // are among `asked`, "*" standing for all. Without `groups` what comes from groups is left out.
    // Its name begins with our attribute, so that lists are in the order of our names.
    EntryData ours(EntryData theirs, std::span<const std::string> asked,
                   const GroupValues& groups = {}) const;

    // What is to be done for these values of our attribute; nothing where there is nothing to do.
    // Not for attributes of groups. Raises result code 53 for one that the directory has no place
    // for, 19 for a value that the map has none of theirs for.
    std::vector<Replacement> changes(const std::string& ours,
                                     const std::vector<std::string>& values) const;
    // A new entry's attributes. What has no place, and what comes from groups, is left out.
    std::vector<Attribute> created(std::span<const Attribute> ours) const;

private:
    bool is_among(std::string_view name, std::span<const std::string> names) const;
    std::vector<std::string> our_values(const MappedAttribute& attribute,
                                        const std::vector<std::string>& theirs) const;
    std::vector<std::string> their_values(const MappedAttribute& attribute,
                                          const std::vector<std::string>& ours) const;
    std::vector<std::string> our_classes(std::vector<std::string> theirs) const;
    std::vector<std::string> their_classes(const std::vector<std::string>& ours) const;
    const std::vector<std::string>& values_of(const EntryData& theirs, std::string_view name) const;
    void add_mapped(const EntryData& theirs, std::span<const std::string> asked,
                    const GroupValues& groups, EntryData& result) const;
    std::string our_name(const EntryData& theirs) const;

    const DirectoryMap& map_;
    const AttributeTypes& types_;
};

}  // namespace orvo::directory
