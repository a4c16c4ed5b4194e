#include "host/idl/properties_script.h"

#include "component/entries/UserCatalogue.h"

namespace orvo {
namespace {

// In the order of PropertyType.
constexpr const char* kinds[] = {"text", "boolean", "int16", "int32", "currency", "date", "array"};
static_assert(std::size(kinds) == static_cast<std::size_t>(PropertyType::whole) + 1);

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
                    return quoted(row.name) + ", " +
                           quoted(kinds[static_cast<std::size_t>(row.type)]) + ", " +
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
