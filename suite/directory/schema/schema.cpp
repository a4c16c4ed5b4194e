#include "suite/directory/schema/schema.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "suite/directory/schema/product_schema.h"
#include "suite/directory/schema/schema_files.h"

namespace orvo::directory {
namespace {

void append_known(const AttributeTypes& types, const std::vector<std::string>& names,
                  std::vector<const AttributeType*>& found) {
    for (const std::string& name : names)
        if (const AttributeType* type = types.find(name)) found.push_back(type);
}

ClassRules rules_for(const ObjectClass& described, const Schema& schema) {
    ClassRules rules;
    rules.classes = schema.classes.with_superiors(described);
    for (const ObjectClass* one : rules.classes) {
        append_known(schema.types, one->required, rules.required);
        append_known(schema.types, one->allowed, rules.allowed);
    }
    rules.allowed.insert(rules.allowed.end(), rules.required.begin(), rules.required.end());
    std::ranges::sort(rules.allowed, std::less<>());
    return rules;
}

}  // namespace

bool ClassRules::is_or_inherits(const ObjectClass& superior) const {
    return std::ranges::find(classes, &superior) != classes.end();
}

bool ClassRules::allows(const AttributeType& type) const {
    return std::ranges::binary_search(allowed, &type, std::less<>());
}

Schema Schema::from_descriptions(std::vector<std::string> attribute_types,
                                 std::vector<std::string> object_classes) {
    Schema schema;
    schema.types = AttributeTypes::from_descriptions(attribute_types);
    schema.classes = ObjectClasses::from_descriptions(object_classes);
    schema.attribute_types = std::move(attribute_types);
    schema.object_classes = std::move(object_classes);
    for (const ObjectClass& described : schema.classes.all())
        schema.rules.emplace(&described, rules_for(described, schema));
    return schema;
}

const Schema& Schema::of_product() {
    static const Schema schema = [] {
        SchemaFiles files;
        for (const ProductSchemaFile& file : product_schema_files) files.read(file.name, file.text);
        return std::move(files).schema();
    }();
    return schema;
}

}  // namespace orvo::directory
