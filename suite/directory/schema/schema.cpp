#include "suite/directory/schema/schema.h"

#include <utility>

namespace orvo::directory {

Schema Schema::from_descriptions(std::vector<std::string> attribute_types,
                                 std::vector<std::string> object_classes) {
    Schema schema;
    schema.types = AttributeTypes::from_descriptions(attribute_types);
    schema.classes = ObjectClasses::from_descriptions(object_classes);
    schema.attribute_types = std::move(attribute_types);
    schema.object_classes = std::move(object_classes);
    return schema;
}

}  // namespace orvo::directory
