#pragma once

// The failures of a directory provider. They name no source: the class whose member they leave is
// it ("OrvoDirectory.Ldap").

#include <string>
#include <string_view>

#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {

// Raises the failure of a result code; see directory_failure.
[[noreturn]] void raise_code(int code, std::string_view message = {},
                             std::string_view nearest_entry = {});

// A name as a description quotes it: between apostrophes, of a long one the beginning.
std::string quoted_name(std::string_view name);

// Raises result code 34 for a name that holds half of a surrogate pair: no directory can have it,
// and in UTF-8 it would be another name.
void require_well_formed(TextView name);

// The same, and also for a name that holds a NUL: what reads it only as far as there would take it
// for another name.
void require_whole(TextView name);

}  // namespace orvo::directory
