#pragma once

#include <cstdint>

namespace orvo {

// A boolean that is handed on as it came: 0 is false, any other number true, and which number a
// true one is stays. Where that does not matter, bool serves.
struct Boolean {
    std::int16_t number = 0;

    constexpr Boolean() = default;
    constexpr Boolean(bool value) : number(value ? -1 : 0) {}
    static constexpr Boolean of(std::int16_t number) {
        Boolean value;
        value.number = number;
        return value;
    }
    constexpr operator bool() const { return number != 0; }
};

}  // namespace orvo
