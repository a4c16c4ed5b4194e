#pragma once

// Distinguished names taken apart: the attributes and values that they are made of.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::directory {

// One attribute and its value in a name; the value without its escapes.
struct NamePart {
    std::string attribute;
    std::string value;
};
using RelativeName = std::vector<NamePart>;

// The relative names, the entry's own first; none for the root. Nothing for what is no name
// (DistinguishedName), is not UTF-8 or has a value in hexadecimal.
std::optional<std::vector<RelativeName>> try_name_parts(std::string_view name);

// A name of these parts, escaped where it has to be and without blanks between them, as OpenLDAP's
// server writes it: "cn=Smith\\2C John,o=Shop".
std::string joined_name(const std::vector<RelativeName>& parts);

// The value that begins at `at`, without its escapes and the blanks behind it; `at` then is at the
// "," or "+" behind it, or at the end.
std::string value_in_name(std::string_view name, std::size_t& at);

}  // namespace orvo::directory
