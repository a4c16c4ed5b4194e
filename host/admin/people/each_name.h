#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orvo::admin {

// Does something for each of these users or profiles. What is refused for one of them is told on
// standard error, and the others go on; a directory that nobody can work with is raised. The exit
// code.
int for_each_name(const std::vector<std::string>& names,
                  const std::function<void(const std::string& name)>& work);

}  // namespace orvo::admin
