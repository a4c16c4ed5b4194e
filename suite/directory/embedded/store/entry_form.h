#pragma once

// The attributes of an entry as octets, in which those that nobody asks for are passed over.
//
//   attribute := number, size of what follows, value...     value := size, octets
//
// Numbers and sizes have seven bits in an octet, the lowest first; the highest bit says that more
// follow.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/embedded/store/attribute_names.h"
#include "suite/directory/entries/entry_data.h"

namespace orvo::directory::embedded {

// Attributes without values are left out. Gives new attributes their numbers.
std::string encode(const std::vector<Attribute>& attributes, AttributeNames& names);

// Nothing: all.
using Wanted = std::optional<AttributeSelection>;

// Raises result code 80 for octets that `encode` has not made.
std::vector<Attribute> decode(std::string_view octets, const AttributeNames& names,
                              const Wanted& wanted = {});

}  // namespace orvo::directory::embedded
