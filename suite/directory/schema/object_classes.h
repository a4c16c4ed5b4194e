#pragma once

// What the classes of a directory's schema require of an entry.

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvo::directory {

// Immutable once built; any thread may read it.
class ObjectClasses {
public:
    ObjectClasses() = default;

    // From object class descriptions as a subschema entry lists them (RFC 4512, 4.1.1). One that
    // cannot be read is left out.
    static ObjectClasses from_descriptions(std::span<const std::string> descriptions);

    // The attributes that an entry of these classes must have, for these and for their superiors,
    // as the schema spells them; some may be there twice. A class goes by its name or number, in
    // any case; of one that the schema does not know nothing is required.
    std::vector<std::string> required(std::span<const std::string> classes) const;

private:
    struct ObjectClass {
        std::vector<std::string> superiors;
        std::vector<std::string> required;
    };
    std::unordered_map<std::string, ObjectClass> by_name_;  // in lower case
};

}  // namespace orvo::directory
