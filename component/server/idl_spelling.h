#pragma once

#include <string>
#include <vector>

namespace orvo {

// A type library knows each name in one spelling, the one it meets first, without regard to case: a
// parameter "iUser" would rename the interface IUser. This is a hidden structure for the library's
// beginning whose fields are those of `names` that `body` also spells otherwise.
std::string idl_spelling(const std::vector<std::string>& names, const std::string& body);

}  // namespace orvo
