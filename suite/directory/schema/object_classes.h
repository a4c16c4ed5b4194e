#pragma once

// The object classes of a directory's schema: what they require of an entry, and what they allow.

#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvo::directory {

enum class ClassKind { abstract, structural, auxiliary };

// One class, without what it has from its superiors.
struct ObjectClass {
    std::string oid;
    std::vector<std::string> names;  // the first is the preferred one
    ClassKind kind = ClassKind::structural;
    std::vector<std::string> superiors;  // these and attributes as the schema spells them
    std::vector<std::string> required;
    std::vector<std::string> allowed;

    const std::string& name() const { return names.empty() ? oid : names.front(); }
};

// Immutable once built; any thread may read it.
class ObjectClasses {
public:
    ObjectClasses() = default;
    ObjectClasses(ObjectClasses&&) = default;
    ObjectClasses& operator=(ObjectClasses&&) = default;

    // From object class descriptions as a subschema entry lists them (RFC 4512, 4.1.1). One that
    // cannot be read is left out.
    static ObjectClasses from_descriptions(std::span<const std::string> descriptions);

    const std::deque<ObjectClass>& all() const { return classes_; }

    // By any of its names or its number, in any case; nothing for one that the schema does not
    // know.
    const ObjectClass* find(std::string_view name) const;

    // The class and all that it inherits from, as far as the schema knows them; the class itself is
    // the last.
    std::vector<const ObjectClass*> with_superiors(const ObjectClass& described) const;

    // The attributes that an entry of these classes must have, for these and for their superiors,
    // as the schema spells them; some may be there twice. Of a class that the schema does not know
    // nothing is required.
    std::vector<std::string> required(std::span<const std::string> classes) const;

private:
    void append_superiors(std::vector<const ObjectClass*>& classes) const;

    std::deque<ObjectClass> classes_;  // does not move what the index points to
    std::unordered_map<std::string, const ObjectClass*> by_name_;  // in lower case
};

}  // namespace orvo::directory
