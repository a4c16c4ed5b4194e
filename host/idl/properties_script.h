#pragma once

#include <string>

namespace orvo {

// The names of the user's typed properties as a fragment of ECMAScript 3, made from the catalogue,
// for the conformance scripts. The text is committed as tests/conformance/user_catalogue.js.part.
std::string user_property_list_script();

}  // namespace orvo
