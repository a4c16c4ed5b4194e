#pragma once

#include <string>

namespace orvo {

// The C++ client of the component's public classes: client/orvo/membership.h.
std::string client_header();

}  // namespace orvo
