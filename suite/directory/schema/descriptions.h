#pragma once

// Descriptions of attribute types and object classes (RFC 4512, 4.1), one at a time.

#include <optional>
#include <string>
#include <string_view>

#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/schema/object_classes.h"

namespace orvo::directory {

// What a description says itself; what the type inherits is not filled in.
struct TypeDescription {
    AttributeType type;
    std::string superior = {};         // as it is spelled; empty: none
    std::string unknown_keyword = {};  // the first that is none of the grammar's
};

struct ClassDescription {
    ObjectClass described;
    std::string unknown_keyword = {};
};

// Nothing where it cannot be read: parentheses or quotes that do not close, no number.
std::optional<TypeDescription> try_type_description(std::string_view text);
std::optional<ClassDescription> try_class_description(std::string_view text);

}  // namespace orvo::directory
