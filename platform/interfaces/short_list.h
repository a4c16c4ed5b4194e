#pragma once

// What one call takes along, its arguments or the characters of a name: nearly always a few, for
// which no memory is asked for. Belongs to one call; raises nothing but for want of memory.

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace orvo::detail {

// `size` values of T, at first T{}. They live as long as the list; it is neither copied nor moved.
template <class T, std::size_t few = 8>
class ShortList {
public:
    explicit ShortList(std::size_t size)
        : many_(size > few ? size : 0), all_(size > few ? many_.data() : few_.data(), size) {}
    ShortList(const ShortList&) = delete;
    ShortList& operator=(const ShortList&) = delete;

    T& operator[](std::size_t index) const { return all_[index]; }
    std::span<T> all() const { return all_; }

private:
    std::array<T, few> few_{};
    std::vector<T> many_;
    std::span<T> all_;
};

}  // namespace orvo::detail
