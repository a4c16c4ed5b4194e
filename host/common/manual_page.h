#pragma once

#include <string>

namespace CLI {
class App;
}

namespace orvo {

// A program's manual page (section 1, for man), from its command line.
//   see_also  other pages, as the page shows them: "orvo-site.ini(5)"
std::string manual_page(const CLI::App& program, const std::string& see_also);

// What bash completes of the program's commands and options (a file for its completions' folder).
std::string bash_completion(const CLI::App& program);

}  // namespace orvo
