#include "suite/directory/policy/password_attributes.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>

#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

// Whether a description is of the type that has one of these names, whatever its options.
bool is_one_of(std::string_view description, std::initializer_list<std::string_view> names) {
    const std::string_view type = description.substr(0, description.find(';'));
    return std::ranges::any_of(
        names, [&](std::string_view name) { return ascii::equal_ignoring_case(type, name); });
}

constexpr int disabled_flag = 2;  // of userAccountControl

bool has_disabled_flag(std::string_view number) {
    int flags = 0;
    std::from_chars(number.data(), number.data() + number.size(), flags);
    return (flags & disabled_flag) != 0;
}

}  // namespace

bool is_password(std::string_view attribute) {
    return is_one_of(attribute, {"userPassword", "2.5.4.35"});
}

bool holds_hashes(std::string_view attribute) {
    return is_password(attribute) ||
           is_one_of(attribute, {"pwdHistory", "1.3.6.1.4.1.42.2.27.8.1.20"});
}

bool is_secret(std::string_view attribute) {
    return is_password(attribute) || is_one_of(attribute, {"OrvoNTPassword", "OrvoAttribute:58"});
}

bool is_account_lock(std::string_view attribute) {
    return is_one_of(attribute, {"pwdAccountLockedTime", "1.3.6.1.4.1.42.2.27.8.1.17"});
}

bool disables_account(std::string_view attribute, std::span<const std::string> values) {
    if (values.empty()) return false;
    if (is_account_lock(attribute)) return true;
    if (is_one_of(attribute, {"nsAccountLock", "2.16.840.1.113730.3.1.610"}))
        return ascii::equal_ignoring_case(values.front(), "true");
    return is_one_of(attribute, {"userAccountControl", "1.2.840.113556.1.4.8"}) &&
           has_disabled_flag(values.front());
}

}  // namespace orvo::directory
