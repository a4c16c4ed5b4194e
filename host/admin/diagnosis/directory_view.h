#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/entries/entry_data.h"

namespace orvo::admin {

// The entries of a directory, of either kind. What goes wrong is raised as a Failure. Used by one
// thread.
class DirectoryView {
public:
    virtual ~DirectoryView() = default;

    // With operational attributes. Nothing where it is not there, or hidden from who asks.
    virtual std::optional<directory::EntryData> find(const std::string& name) = 0;
    // The first of those below `base` that match, in any order.
    virtual std::vector<directory::EntryData> search(const std::string& base,
                                                     const std::string& filter,
                                                     std::size_t most) = 0;
};

// An attribute's values, its first one; none and empty where the entry lacks it.
const std::vector<std::string>& values_of(const directory::EntryData& entry,
                                          std::string_view attribute);
std::string value_of(const directory::EntryData& entry, std::string_view attribute);

}  // namespace orvo::admin
