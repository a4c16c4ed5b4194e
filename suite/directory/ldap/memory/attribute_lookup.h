#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory::ldap {

// The attribute of that name, which may be any of its names; the end where there is none. `List` is
// a vector of attributes, constant or not.
template <class List>
auto find_attribute(List& attributes, const std::string& name, const AttributeTypes& types) {
    // Callers mostly spell it as the server does, and that is quickly seen.
    const auto found =
        std::find_if(attributes.begin(), attributes.end(), [&](const Attribute& attribute) {
            return ascii::equal_ignoring_case(attribute.name, name);
        });
    if (found != attributes.end()) return found;
    return std::find_if(attributes.begin(), attributes.end(), [&](const Attribute& attribute) {
        return types.same(attribute.name, name);
    });
}

}  // namespace orvo::directory::ldap
