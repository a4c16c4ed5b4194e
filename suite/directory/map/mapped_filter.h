#pragma once

// Our filters as a directory is asked that calls things otherwise (directory_map.h).

#include <functional>
#include <optional>

#include "suite/directory/filters/filter.h"
#include "suite/directory/map/directory_map.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory {

struct MappedFilter {
    // True of every entry that our filter is true of.
    Filter sent;
    // Whether it is true of no others; otherwise our filter has to be asked of what is found.
    bool is_exact = true;
};

// Whether an entry is a member of a group, as far as a filter can tell: what is true of every
// member. Nothing where that would be every entry.
using GroupCondition = std::function<std::optional<MappedFilter>(const MappedGroup& group)>;

// `is_of_users`: whether it is users alone that are searched, of whom defaults are true. `types`:
// with_our_types.
MappedFilter mapped_filter(const Filter& ours, const DirectoryMap& map, const AttributeTypes& types,
                           bool is_of_users, const GroupCondition& group_condition);

}  // namespace orvo::directory
