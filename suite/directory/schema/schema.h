#pragma once

// A directory's schema as a whole: its descriptions, and what is read from them.

#include <string>
#include <vector>

#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/schema/object_classes.h"

namespace orvo::directory {

// Immutable once made; any thread may read it.
struct Schema {
    // RFC 4512 descriptions, with numbers written out.
    std::vector<std::string> attribute_types;
    std::vector<std::string> object_classes;

    AttributeTypes types;
    ObjectClasses classes;

    static Schema from_descriptions(std::vector<std::string> attribute_types,
                                    std::vector<std::string> object_classes);
};

}  // namespace orvo::directory
