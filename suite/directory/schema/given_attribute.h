#pragma once

// Attributes as somebody gives them: what their descriptions mean, and whether their values are
// such values.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/schema/refusal.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory {

struct ResolvedAttribute {
    const AttributeType* type = nullptr;
    std::string name = {};  // as the schema spells the type; options in lower case and in order
};

// Refuses with 17 what is no attribute of the schema, or has options that it cannot have.
Refusal resolve(const Schema& schema, std::string_view given, ResolvedAttribute& resolved);

// Whether each is a value of the attribute's syntax (21), only one where one is allowed (19), and
// none twice (20).
Refusal check_values(const Schema& schema, std::string_view given,
                     const ResolvedAttribute& resolved, std::span<const std::string> values);
// Only the first of these, as for values that are to go.
Refusal check_syntax(const Schema& schema, std::string_view given, const AttributeType& type,
                     std::span<const std::string> values);

// The values as a directory keeps them: classes and names in the schema's spelling, names without
// blanks between their parts.
std::vector<std::string> stored_values(const Schema& schema, const AttributeType& type,
                                       std::span<const std::string> values);

// A name as a directory keeps it; what is no name is left as it is.
std::string stored_name(const Schema& schema, std::string_view name);

// Whether the directory alone writes it (19).
Refusal check_writable(std::string_view name, const AttributeType& type);

}  // namespace orvo::directory
