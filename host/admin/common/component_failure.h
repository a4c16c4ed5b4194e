#pragma once

#include <exception>
#include <optional>
#include <string>

namespace orvo::admin {

// A failure that the component raised, in one sentence with what to do; nothing for other failures.
std::optional<std::string> try_told_by_component(const std::exception& failure);

}  // namespace orvo::admin
