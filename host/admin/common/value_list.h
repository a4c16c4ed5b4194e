#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvo::admin {

// Several values in one text, as a cell of a CSV file has them: "1;24". A ";" within a value is
// "\;", and a "\" is "\\" where it stands before ";" or "\" or at the value's end.
std::string joined_values(const std::vector<std::string>& values);
// The other way round; of an empty text none.
std::vector<std::string> split_values(std::string_view text);

}  // namespace orvo::admin
