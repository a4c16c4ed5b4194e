#pragma once

#include <cstddef>
#include <string>

namespace orvo::admin {

// A password of the system's random numbers: letters and digits that nobody takes for others.
std::string random_password(std::size_t length);

// A user's identifier: 32 hexadecimal digits.
std::string random_guid();

}  // namespace orvo::admin
