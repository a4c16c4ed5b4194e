#include "suite/directory/ldap/password_value.h"

#include <algorithm>
#include <initializer_list>
#include <optional>

#include "platform/automation/failure.h"
#include "platform/automation/values.h"
#include "suite/directory/common/ascii.h"
#include "suite/directory/ldap/failures.h"

namespace orvo::directory::ldap {

namespace {

// Whether a description is of the type that has one of these names, whatever its options.
bool is_one_of(std::string_view description, std::initializer_list<std::string_view> names) {
    const std::string_view type = description.substr(0, description.find(';'));
    return std::ranges::any_of(
        names, [&](std::string_view name) { return ascii::equal_ignoring_case(type, name); });
}

}  // namespace

bool is_password(std::string_view attribute) {
    return is_one_of(attribute, {"userPassword", "2.5.4.35"});
}

bool is_secret(std::string_view attribute) {
    return is_password(attribute) || is_one_of(attribute, {"OrvoNTPassword", "OrvoAttribute:58"});
}

Secret password_in(const Variant& value) {
    if (value.is_array() && !value.try_bytes()) {
        const Values values = value.to<Values>();
        if (values.count() == 0) return {};
        if (values.count() > 1) raise_runtime_error(runtime_error::type_mismatch);
        return password_in(values[values.lower_bound()]);
    }
    if (std::optional<std::string> bytes = value.try_bytes()) return Secret::of_bytes(*bytes);
    if (!value.is_text()) return Secret(value.to<Text>());
    if (!is_well_formed(value.text_view()))
        raise_code(result_code::invalid_syntax, "A password cannot hold half of a surrogate pair.");
    return Secret(value.text_view());
}

}  // namespace orvo::directory::ldap
