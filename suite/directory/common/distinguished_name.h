#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/automation/text.h"

namespace orvo::directory {

// A distinguished name, parsed once (RFC 4514) and kept in a form in which equal names compare
// equal: attribute types by one spelling (cn, commonName and 2.5.4.3 are the same), values
// unescaped, without regard to case, runs of blanks as one blank, the parts of a multi-valued name
// in order. Blanks around "," "=" and "+" are allowed; the older quoted values and ";" are not, so
// that no server can read a name otherwise than it was read here.
class DistinguishedName {
public:
    // The empty text is the root: a name without components. Empty result: not a name.
    static std::optional<DistinguishedName> try_parse(TextView text);

    // The number of relative names, the entry's own first.
    std::size_t depth() const { return components_.size(); }

    // Whether this entry lies under `ancestor`, at any depth; no name is below itself.
    bool is_below(const DistinguishedName& ancestor) const;

    bool operator==(const DistinguishedName&) const = default;

    // The comparable form as one text, for keys. Not meant for a server.
    std::string key() const;

private:
    std::vector<std::string> components_;
};

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
// front of the longest readable end is a relative name that escaped_name is applied to.
Text full_name(TextView written);

// The full name of an entry below `container`, of what callers put together: a relative name, ","
// and the container, which may be spelled in any way and also from the top down with "/". Nothing
// where the text does not end in the container, or names the container itself.
std::optional<Text> name_below(TextView written, const DistinguishedName& container);

}  // namespace orvo::directory
