#include "suite/directory/ldap/failures.h"

namespace orvo::directory::ldap {

void raise_code(int code, std::string_view message, std::string_view nearest_entry) {
    throw directory_failure(code, provider_name, message, nearest_entry);
}

void raise_unsupported() {
    constexpr std::int32_t action_not_supported = 445;
    throw Failure(action_not_supported, Text(provider_name), u"Object doesn't support this action");
}

}  // namespace orvo::directory::ldap
