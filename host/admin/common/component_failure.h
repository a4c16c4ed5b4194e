#pragma once

#include <exception>
#include <optional>
#include <string>

namespace orvo::admin {

// A failure that the component raised, in one sentence with what to do; nothing for other failures.
std::optional<std::string> try_told_by_component(const std::exception& failure);

// Whether it is one that every other operation would meet, too: a directory that cannot be reached,
// or refuses the service account.
bool is_of_whole_directory(const std::exception& failure);

// Whether it says that an entry is not there, is there already, or that the directory knows no
// attribute of that name.
bool is_missing_entry(const std::exception& failure);
bool is_existing_entry(const std::exception& failure);
bool is_unknown_attribute(const std::exception& failure);

}  // namespace orvo::admin
