#pragma once

#include <string>
#include <string_view>

#include "platform/abi/system.h"

namespace orvo::runtime {

// "{33CC820F-121F-4221-B48E-57EBB11C6955}"
std::string braced(const abi::GUID& guid);

// Reads that form, in either case. False for anything else.
bool read_braced(std::string_view text, abi::GUID& guid);

struct GuidHash {
    // An identifier is as good as random already.
    std::size_t operator()(const abi::GUID& guid) const {
        std::uint64_t halves[2];
        static_assert(sizeof halves == sizeof guid);
        std::memcpy(halves, &guid, sizeof guid);
        return static_cast<std::size_t>(halves[0] ^ (halves[1] * 0x9E3779B97F4A7C15u));
    }
};

}  // namespace orvo::runtime
