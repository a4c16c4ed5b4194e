#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace orvo {

// A program's manual page (section 1, for man), from its command line.
//   see_also  other pages, as the page shows them: "orvo-site.ini(5)"
std::string manual_page(const CLI::App& program, const std::string& see_also);

// What bash completes of the program's commands and options (a file for its completions' folder).
//   kinds  of values that the program itself knows: where an option's or argument's value_name is
//          "USER", bash asks "PROGRAM completion USER BEGIN", which prints one in a line
std::string bash_completion(const CLI::App& program, const std::vector<std::string>& kinds);

}  // namespace orvo
