#pragma once

// A directory's schema as a whole: its descriptions, and what is read from them.

#include <string>
#include <unordered_map>
#include <vector>

#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/schema/object_classes.h"

namespace orvo::directory {

// What a class asks of an entry, its superiors' rules included. Attributes that the schema does not
// know are left out.
struct ClassRules {
    std::vector<const ObjectClass*> classes;     // superiors and the class itself, the last
    std::vector<const AttributeType*> required;  // in the order of the classes
    std::vector<const AttributeType*> allowed;   // required ones too; sorted by address

    bool is_or_inherits(const ObjectClass& superior) const;
    bool allows(const AttributeType& type) const;
};

// Immutable once made; any thread may read it.
struct Schema {
    // RFC 4512 descriptions, with numbers written out.
    std::vector<std::string> attribute_types;
    std::vector<std::string> object_classes;

    AttributeTypes types;
    ObjectClasses classes;

    static Schema from_descriptions(std::vector<std::string> attribute_types,
                                    std::vector<std::string> object_classes);

    // What the product's own directory begins with: the standards' schema as far as its entries
    // need it (schema/standard.schema), and the product's.
    static const Schema& of_product();

    // `described` is one of `classes`.
    const ClassRules& rules_of(const ObjectClass& described) const { return rules.at(&described); }

    std::unordered_map<const ObjectClass*, ClassRules> rules;
};

}  // namespace orvo::directory
