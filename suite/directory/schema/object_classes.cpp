#include "suite/directory/schema/object_classes.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/descriptions.h"

namespace orvo::directory {

ObjectClasses ObjectClasses::from_descriptions(std::span<const std::string> descriptions) {
    ObjectClasses result;
    for (const std::string& text : descriptions) {
        std::optional<ClassDescription> read = try_class_description(text);
        if (!read) continue;
        const ObjectClass& described = result.classes_.emplace_back(std::move(read->described));
        result.by_name_[ascii::lower(described.oid)] = &described;
        for (const std::string& name : described.names)
            result.by_name_[ascii::lower(name)] = &described;
    }
    return result;
}

const ObjectClass* ObjectClasses::find(std::string_view name) const {
    const auto found = by_name_.find(ascii::lower(name));
    return found == by_name_.end() ? nullptr : found->second;
}

std::vector<const ObjectClass*> ObjectClasses::with_superiors(const ObjectClass& described) const {
    std::vector<const ObjectClass*> found = {&described};
    append_superiors(found);
    std::ranges::reverse(found);
    return found;
}

// Grows while it is walked: superiors follow those who have them, each class once.
void ObjectClasses::append_superiors(std::vector<const ObjectClass*>& classes) const {
    for (std::size_t next = 0; next < classes.size(); ++next)
        for (const std::string& name : classes[next]->superiors) {
            const ObjectClass* superior = find(name);
            if (superior && std::ranges::find(classes, superior) == classes.end())
                classes.push_back(superior);
        }
}

std::vector<std::string> ObjectClasses::required(std::span<const std::string> classes) const {
    std::vector<const ObjectClass*> known;
    for (const std::string& name : classes) {
        const ObjectClass* described = find(name);
        if (described && std::ranges::find(known, described) == known.end())
            known.push_back(described);
    }
    append_superiors(known);
    std::vector<std::string> required;
    for (const ObjectClass* described : known)
        required.insert(required.end(), described->required.begin(), described->required.end());
    return required;
}

}  // namespace orvo::directory
