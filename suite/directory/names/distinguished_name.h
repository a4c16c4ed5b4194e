#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/values/text.h"

namespace orvo::directory {

// A distinguished name, parsed once (RFC 4514) and kept in a form in which equal names compare
// equal: attribute types by one spelling (cn, commonName and 2.5.4.3 are the same), values
// unescaped, in compatible lower-case letters (text_forms.h), runs of blanks as one blank, the
// parts of a multi-valued name in order. Blanks around "," "=" and "+" are allowed; the older
// quoted values and ";" are not, so that no server can read a name otherwise than it was read here.
//
// What is equal here is equal for a server that prepares text by RFC 4518 (slapd has older tables
// and holds a few letters apart, "ẞ" and "ß"). A server may take more for equal: other names
// that its schema has for a type, values by rules of their own (telephone numbers). What must not
// miss that goes by loose_key.
class DistinguishedName {
public:
    // The empty text is the root: a name without components. Empty result: not a name.
    static std::optional<DistinguishedName> try_parse(TextView text);

    // The number of relative names, the entry's own first.
    std::size_t depth() const { return depth_; }

    // Whether this entry lies under `ancestor`, at any depth; no name is below itself.
    bool is_below(const DistinguishedName& ancestor) const;

    // The name above this one; of the root itself, the root.
    DistinguishedName parent() const;

    bool operator==(const DistinguishedName&) const = default;

    // The comparable form as one text, for keys. Not meant for a server.
    const std::string& key() const { return key_; }

    // The same for all names that a server may take for this one, whatever its schema calls a type
    // and however it compares text: the letters and digits of the values, without the types. The
    // same for some other names, too ("cn=R&D" and "ou=rd"). Empty where it could be that of any
    // name: the root, names without letters, values in hexadecimal. Values that are more than text
    // to a server are not covered: a time in another zone or without its seconds, or a
    // distinguished name as a value, has a key of its own in each spelling.
    std::string loose_key() const;

private:
    std::string key_;  // in values "\\" stands in front of "+" "," "#" and itself
    std::size_t depth_ = 0;
};

}  // namespace orvo::directory
