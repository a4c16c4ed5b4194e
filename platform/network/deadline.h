#pragma once

// An end to waiting that several steps share.

#include <algorithm>
#include <chrono>

namespace orvo {

class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds limit)
        : at_(std::chrono::steady_clock::now() + limit) {}

    std::chrono::steady_clock::time_point at() const { return at_; }
    // Rounded up, so that waiting so long reaches the deadline; never negative.
    std::chrono::milliseconds left() const {
        using std::chrono::milliseconds;
        const auto rest = at_ - std::chrono::steady_clock::now();
        return std::max(std::chrono::ceil<milliseconds>(rest), milliseconds(0));
    }
    bool has_passed() const { return left().count() == 0; }

private:
    std::chrono::steady_clock::time_point at_;
};

}  // namespace orvo
