#pragma once

// Distinguished names as callers write them, who put them together of a plain name and a container
// without escaping anything.

#include <cstddef>
#include <optional>

#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory {

// No name that is put together with its container has more UTF-16 units. To find out where the
// container of a longer one begins is not worth what it costs.
inline constexpr std::size_t longest_name = 8192;

// A container as settings have it: a distinguished name as it stands ("ou=Users,o=Shop"), or pieces
// from the top down with "/" ("o=Shop/ou=Users"), which are turned round. Nothing is escaped.
Text container_name(TextView container);

// A value as distinguished names hold it (RFC 4514, 2.4): what would mean something else there is
// escaped.
Text escaped_value(TextView value);

// A relative name as its callers put it together, "cn=" and a plain name: as it stands where it can
// be read as a distinguished name ("cn=Smith\\, John", "cn=a,ou=Staff"); otherwise what is behind
// the first "=" is a value as it is ("cn=Smith, John"), and is escaped. Without "=", as it stands.
Text escaped_name(TextView relative_name);

// The entry `relative_name`, which escaped_name is applied to, below `container`; either may be
// empty.
Text entry_name(TextView relative_name, TextView container);

// A full name as its callers put it together of a plain name and its container,
// "cn=Smith, John,ou=Users,o=Shop": as it stands where it can be read; otherwise what stands in
// front of the longest readable end is a relative name that escaped_name is applied to. Without
// knowing the container that is a guess, which name_below is not: "cn=a<b, c=d,ou=Users,o=Shop".
// As it stands, too, where it is longer than longest_name.
Text full_name(TextView written);

// The full name of an entry below `container`, of what callers put together: a relative name, ","
// and the container, which may be spelled in any way and also from the top down with "/". Nothing
// where the text does not end in the container, names the container itself, cannot be read or is
// longer than longest_name.
std::optional<Text> name_below(TextView written, const DistinguishedName& container);

// Whether that is the text as it stands, as one look at most texts tells: a type, "=", a value that
// holds nothing that would have to be read, "," and the container just as it is spelled here. Never
// below the root.
bool is_plain_below(TextView written, TextView container);

}  // namespace orvo::directory
