#pragma once

// Whether octets are a value of a syntax (RFC 4517, 3.3).

#include <optional>
#include <string_view>
#include <vector>

#include "suite/directory/names/name_parts.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory {

enum class Validity { valid, invalid, no_validator };

// `syntax_oid` is a number without a length. What is a name or a class is so by the schema. As
// OpenLDAP has it, with two differences: text has to be well-formed UTF-8, also beyond what that
// looks at, and names are those of DistinguishedName. Of syntaxes that nobody uses any more, and of
// those that are not known, no value can be judged.
Validity validity_of(std::string_view syntax_oid, std::string_view value, const Schema& schema);

// Whether a schema may use it.
bool is_known_syntax(std::string_view syntax_oid);

// Whether its values only come with the option "binary".
bool needs_binary_option(std::string_view syntax_oid);

// The parts of a name that is one by the schema: types that it knows, each once in a relative name,
// values of their syntaxes. Nothing for others; no parts for the root.
std::optional<std::vector<RelativeName>> try_name_of_schema(std::string_view name,
                                                            const Schema& schema);

}  // namespace orvo::directory
