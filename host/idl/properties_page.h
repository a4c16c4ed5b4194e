#pragma once

#include <string>

namespace orvo {

// The documentation page of the user's typed properties, as Markdown, made from the catalogue. The
// text is committed as docs/user-properties.md.
std::string user_properties_page();

}  // namespace orvo
