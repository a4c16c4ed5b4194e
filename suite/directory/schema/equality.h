#pragma once

// When two values of an attribute are equal.

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "suite/directory/schema/schema.h"

namespace orvo::directory {

// The key by which values of the type are equal: by its equality rule, octet by octet where it has
// none. Names of types and classes count by what they name.
std::string equality_key(const Schema& schema, const AttributeType& type, std::string_view value);

// Where the value is among others; nothing where it is not.
std::optional<std::size_t> find_value(const Schema& schema, const AttributeType& type,
                                      std::span<const std::string> values, std::string_view value);

// The index of the value that the first repetition repeats.
std::optional<std::size_t> find_repeated(const Schema& schema, const AttributeType& type,
                                         std::span<const std::string> values);

}  // namespace orvo::directory
