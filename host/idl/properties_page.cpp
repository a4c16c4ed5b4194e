#include "host/idl/properties_page.h"

#include "component/entries/UserCatalogue.h"

namespace orvo {
namespace {

// In the order of PropertyType.
constexpr const char* type_names[] = {"text",     "boolean", "16-bit integer", "32-bit integer",
                                      "currency", "date",    "array"};
static_assert(std::size(type_names) == static_cast<std::size_t>(PropertyType::whole) + 1);

std::string remark(const UserProperty& property) {
    std::string text;
    auto add = [&](const std::string& sentence) { text += (text.empty() ? "" : " ") + sentence; };
    if (property.fallback == Fallback::when_zero)
        add("Unset or 0: the profile's value, for a user who has a profile.");
    if (property.fallback == Fallback::when_empty)
        add("Unset: the profile's value, for a user who has a profile; 0 is a value.");
    switch (property.rule) {
        case PropertyRule::id_list:
            add("A first element of -1 reads as 0.");
            break;
        case PropertyRule::no_value_is_text:
            add("No value reads as empty text.");
            break;
        case PropertyRule::empty_is_zero:
            add("No value reads as 0.");
            break;
        case PropertyRule::marks_profile_change:
            add("Names the user's profile.");
            break;
        case PropertyRule::in_out:
        case PropertyRule::none:
            break;
    }
    return text;
}

std::string row(std::initializer_list<std::string> cells) {
    std::string text = "|";
    for (const std::string& cell : cells) text += (cell.empty() ? "" : " " + cell) + " |";
    return text + "\n";
}

std::string code(const std::string& text) { return "`" + text + "`"; }

}  // namespace

std::string user_properties_page() {
    std::string page =
        "# Properties of a user\n\n"
        "Written from the catalogue in `component/entries/UserCatalogue.h` by `orvo-idl "
        "--properties`; not edited by hand.\n\n"
        "A property reads its attribute's first value and converts it by the Automation rules; a "
        "value that does not convert raises 13 (type mismatch) or 6 (overflow). Setting a text to "
        "empty clears the attribute; numbers are written, zero too; a boolean is stored as 1 or "
        "0. An array is the attribute's whole value. All can be read and set.\n\n"
        "| Property | Type | Attribute | |\n|---|---|---|---|\n";
    for (const UserProperty& property : user_catalogue)
        page += row({code(property.name), type_names[static_cast<std::size_t>(property.type)],
                     code(to_utf8(property.attribute)), remark(property)});

    page +=
        "\n## Computed\n\n"
        "| Property | Type | |\n|---|---|---|\n" +
        row({code("CN"), "text, read only", "The common name."}) +
        row({code("GUID"), "text, read only", "The identifier given at creation."}) +
        row({code("Profile"), "object, read only", "The bound profile; nothing without one."}) +
        row({code("NTUser"), "text, read only", "Of the account for users of this type."}) +
        row({code("NTPassword"), "text, read only", "Its password."});
    for (const UserTypeProperty& property : user_types)
        page += row({code(property.name), "boolean",
                     "Type " + std::to_string(property.type) +
                         ". Setting it makes the user one, whatever is assigned."});
    page += row({code("InvoiceUser"), "boolean", "The opposite of `CreditCardUser`."});

    page += "\n## Roles\n\n| Property | Role |\n|---|---|\n";
    for (const RoleProperty& property : user_roles)
        page += row({code(property.name), std::to_string(property.role)});
    return page;
}

}  // namespace orvo
