#include "component/server/properties_script.h"

#include "component/entries/UserCatalogue.h"

namespace orvo {
namespace {

std::string kind_of(PropertyType type) {
    switch (type) {
        case PropertyType::text:
            return "text";
        case PropertyType::boolean:
            return "boolean";
        case PropertyType::int16:
            return "int16";
        case PropertyType::int32:
            return "int32";
        case PropertyType::currency:
            return "currency";
        case PropertyType::date:
            return "date";
        case PropertyType::whole:
            return "array";
    }
    return {};
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

// One list of the fragment; `cells_of` makes the text between the brackets of one row.
template <class Rows, class Cells>
std::string list(const std::string& name, const Rows& rows, Cells cells_of) {
    std::string text;
    for (const auto& row : rows)
        text += (text.empty() ? "" : ",\n") + std::string("    [") + cells_of(row) + "]";
    return "\nvar " + name + " = [\n" + text + "\n];\n";
}

}  // namespace

std::string user_property_list_script() {
    return "// Written from the catalogue in component/entries/UserCatalogue.h by orvo-idl\n"
           "// --property-list; not edited by hand.\n"
           "\n"
           "// Name, type, attribute, whether the profile's value stands in for none." +
           list("catalogue", user_catalogue,
                [](const UserProperty& row) {
                    return quoted(row.name) + ", " + quoted(kind_of(row.type)) + ", " +
                           quoted(to_utf8(row.attribute)) + ", " +
                           (row.fallback == Fallback::never ? "false" : "true");
                }) +
           "\n// Name, number." +
           list("userTypes", user_types,
                [](const UserTypeProperty& row) {
                    return quoted(row.name) + ", " + std::to_string(row.type);
                }) +
           list("userRoles", user_roles, [](const RoleProperty& row) {
               return quoted(row.name) + ", " + std::to_string(row.role);
           });
}

}  // namespace orvo
