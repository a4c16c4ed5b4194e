#pragma once

// A plain value.

#include "platform/interfaces/crossing.h"

namespace orvo {

// A count or position as record sets pass it: as wide as a pointer by slot, a 32-bit integer to
// late-bound callers.
struct LongPtr {
    constexpr LongPtr(std::int64_t value = 0) : value(value) {}
    constexpr operator std::int64_t() const { return value; }

    std::int64_t value;
};

template <>
struct crossing<LongPtr> : detail::number_crossing<LongPtr, std::int64_t, abi::VT_I8> {
    static LongPtr from_late(const Variant& value) { return value.to<std::int32_t>(); }
    static Variant to_late(LongPtr value) { return static_cast<std::int32_t>(value.value); }
    static std::string idl() { return "LONG_PTR"; }
};

}  // namespace orvo
