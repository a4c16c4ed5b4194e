#pragma once

// The encodings of the web: HTML text, and names and values in an address or a form.

#include <optional>
#include <string_view>

#include "platform/values/text.h"

namespace orvo::web {

// Text that stands for itself in HTML, also inside a quoted attribute.
Text html_encode(TextView text);
std::string html_encode_utf8(std::string_view text);

// UTF-8, everything but letters, digits and "-._~" as %XX; a blank becomes "+" in a query and %20
// in a path, where "/" stands for itself.
Text url_encode(TextView text);
Text url_path_encode(TextView path);

// The other way, for names and values of a form: "+" is a blank, and a "%" that no two hexadecimal
// digits follow stands for itself.
std::string form_decoded(std::string_view text);
// For a path: nothing where a "%" is not followed by two hexadecimal digits.
std::optional<std::string> try_path_decoded(std::string_view text);

bool is_utf8(std::string_view bytes);

}  // namespace orvo::web
