#pragma once

// Texts as parts of what directories read. UTF-8.

#include <string>
#include <string_view>

namespace orvo::admin {

// As the value in an entry's name: "Ada\, Lady".
std::string as_name_value(std::string_view text);

// As the value in one of the component's filter items, where "NOT" would be an operator.
std::string as_filter_value(std::string_view text);

}  // namespace orvo::admin
