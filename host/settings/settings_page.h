#pragma once

#include <string>

namespace orvo {

// The page of all settings (keys of the configuration, variables of the environment), as Markdown,
// made from the tables that their readers have. The text is committed as
// docs/reference/settings.md.
std::string settings_page();

}  // namespace orvo
