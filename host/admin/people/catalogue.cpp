#include "host/admin/people/catalogue.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string_view>

#include "component/entries/UserCatalogue.h"
#include "host/admin/common/exit_codes.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {
namespace {

using directory::ascii::equal_ignoring_case;

constexpr int largest = std::numeric_limits<std::int16_t>::max();

std::optional<int> try_number(const std::string& text, int least, int most) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most) return std::nullopt;
    return number;
}

// With or without what the property's name has around its own.
bool is_name(std::string_view name, std::string_view written) {
    if (equal_ignoring_case(name, written)) return true;
    for (const std::string_view end : {"Role", "User"})
        if (name.ends_with(end) &&
            equal_ignoring_case(name.substr(0, name.size() - end.size()), written))
            return true;
    return name.starts_with("Is") && equal_ignoring_case(name.substr(2), written);
}

template <class Rows>
std::string names_of(const Rows& rows) {
    std::string names;
    for (const auto& row : rows) names += (names.empty() ? "" : ", ") + std::string(row.name);
    return names;
}

[[noreturn]] void raise(const std::string& written, const std::string& what) {
    throw Misuse("'" + written + "' is no " + what);
}

}  // namespace

int role_number(const std::string& written) {
    if (const auto number = try_number(written, 1, largest)) return *number;
    for (const RoleProperty& row : user_roles)
        if (is_name(row.name, written)) return row.role;
    raise(written, "role: a number from 1 to 32767, or " + names_of(user_roles));
}

int application_number(const std::string& written) {
    if (const auto number = try_number(written, 1, largest)) return *number;
    raise(written, "application: a number from 1 to 32767");
}

int user_type_number(const std::string& written) {
    if (const auto number = try_number(written, 0, 4)) return *number;
    for (const UserTypeProperty& row : user_types)
        if (is_name(row.name, written)) return row.type;
    raise(written, "type of users: a number from 0 to 4, or " + names_of(user_types));
}

std::string shown_role(const std::string& number) {
    for (const RoleProperty& row : user_roles)
        if (std::to_string(row.role) == number) return number + " (" + row.name + ")";
    return number;
}

std::vector<std::string> role_names() {
    std::vector<std::string> names;
    for (const RoleProperty& row : user_roles) names.emplace_back(row.name);
    return names;
}

bool is_list(std::string_view attribute) {
    if (equal_ignoring_case(attribute, "OrvoApps") || equal_ignoring_case(attribute, "objectClass"))
        return true;
    return std::ranges::any_of(user_catalogue, [&](const UserProperty& row) {
        return row.type == PropertyType::whole &&
               equal_ignoring_case(to_utf8(row.attribute), attribute);
    });
}

std::vector<std::string> profile_attributes() {
    return {"LanguageID",     "Locale",           "OrvoRole",          "OrvoApps",
            "OrvoCatalogIDS", "OrvoDashboardIDs", "AskbookVisibility", "description"};
}

std::vector<std::string> user_attributes() {
    std::vector<std::string> attributes;
    for (const UserProperty& row : user_catalogue) {
        std::string name = to_utf8(row.attribute);
        if (std::ranges::find(attributes, name) == attributes.end())
            attributes.push_back(std::move(name));
    }
    return attributes;
}

}  // namespace orvo::admin
