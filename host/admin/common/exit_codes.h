#pragma once

#include <stdexcept>

namespace orvo::admin {

// What orvo ends with; the numbers are in its manual page. After a wrong command line it is
// orvo::misused, 2.
inline constexpr int done = 0;
inline constexpr int not_done = 1;
inline constexpr int partly_done = 3;  // of several users, say, some were refused

// A command line that only turns out to be wrong when the command runs. what(): one sentence
// without a full stop.
class Misuse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace orvo::admin
