#pragma once

// A plain value.

#include <cstddef>

namespace orvo {

// The bytes that the scripts of one request and their objects may take together. Used by one
// thread.
class MemoryBudget {
public:
    explicit MemoryBudget(std::size_t limit) : limit_(limit) {}

    // Whether there is so much left; it is taken then.
    bool take(std::size_t bytes) {
        if (bytes > limit_ - used_) return false;
        used_ += bytes;
        return true;
    }
    // Of what was taken.
    void give_back(std::size_t bytes) { used_ -= bytes; }

    std::size_t limit() const { return limit_; }
    std::size_t used() const { return used_; }

private:
    std::size_t limit_;
    std::size_t used_ = 0;
};

}  // namespace orvo
