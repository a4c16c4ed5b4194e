#pragma once

#include <stdexcept>
#include <string>

namespace orvo::store {

// A connection cannot be had, or is of no use any more. Inside of this room only: Redis makes a
// Failure of it. what(): why, in words.
class Lost : public std::runtime_error {
public:
    enum class Why { broken, silent, refused };  // silent: the deadline has passed
    explicit Lost(const std::string& reason, Why why_lost = Why::broken)
        : std::runtime_error(reason), why(why_lost) {}

    Why why;
    // Something of a command may have reached the server.
    bool is_sent = false;
};

}  // namespace orvo::store
