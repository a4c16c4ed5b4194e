#pragma once

// Directory values as Automation values, and back, by the attribute's syntax.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/values.h"
#include "platform/values/variant.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory {

// One value as the directory holds it, typed:
//   integer  32-bit integer; currency where it does not fit; text where that is too narrow as well
//   boolean  boolean            time   date in UTC            bytes  array of bytes
//   text     text
// A value that is not of its attribute's syntax stays text.
Variant decode_value(Syntax syntax, std::string_view value);

// All values of an attribute, lower bound 0. `type` is nothing for an attribute that the schema
// does not know: its values are text, or arrays of bytes where they are not UTF-8. An attribute
// without values is an array with one empty element.
Values decode_values(const AttributeType* type, std::span<const std::string> values);

// The values to store for a single value or an array of values; none at all means that the
// attribute is to be removed. A time is written as the type's server takes it. Empty values and
// empty texts are left out, for a directory stores none. An array of bytes is one value. Raises 94
// for null, 13 for a value that the syntax cannot hold (a number with a fraction for an integer,
// say; the description names the attribute), 6 for a date out of range, result code 21 for a text
// with half of a surrogate pair.
std::vector<std::string> encode_values(const AttributeType* type, const Variant& value);

}  // namespace orvo::directory
