#pragma once

// The failures of this provider; their source is "OrvoDirectory.Ldap".

#include <string>
#include <string_view>

#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {

inline constexpr TextView provider_name = u"OrvoDirectory.Ldap";

// Raises the failure of a result code; see directory_failure.
[[noreturn]] void raise_code(int code, std::string_view message = {},
                             std::string_view nearest_entry = {});

// A name as a description quotes it: between apostrophes, of a long one the beginning.
std::string quoted_name(std::string_view name);

// Raises result code 34 for a name that holds half of a surrogate pair: no directory can have it,
// and in UTF-8 it would be another name.
void require_well_formed(TextView name);

// The same, and also for a name that holds a NUL: the client library would read it only as far as
// there, and take it for another name.
void require_whole(TextView name);

// Raises 445 (object doesn't support this action).
[[noreturn]] void raise_unsupported();

}  // namespace orvo::directory::ldap
