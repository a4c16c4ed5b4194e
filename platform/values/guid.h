#pragma once

// Identifiers of classes and interfaces, and their written forms. Upper case is written, either
// case is read. Any thread.

#include <string>
#include <string_view>

#include "platform/system/automation.h"
#include "platform/values/text.h"

namespace orvo {

// Reads "33cc820f-121f-4221-b48e-57ebb11c6955" (either case) at compile time; anything else does
// not compile.
consteval abi::GUID guid(std::string_view text) {
    auto digit = [](char c) -> unsigned {
        if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
        if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
        if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
        throw "an identifier holds hexadecimal digits only";
    };
    auto number = [&](std::size_t from, std::size_t digits) {
        unsigned value = 0;
        for (std::size_t i = from; i < from + digits; ++i) value = value * 16 + digit(text[i]);
        return value;
    };
    if (text.size() != 36 || text[8] != '-' || text[13] != '-' || text[18] != '-' ||
        text[23] != '-')
        throw "an identifier reads xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    abi::GUID result{number(0, 8),
                     static_cast<std::uint16_t>(number(9, 4)),
                     static_cast<std::uint16_t>(number(14, 4)),
                     {}};
    for (std::size_t i = 0; i < 8; ++i)
        result.Data4[i] = static_cast<std::uint8_t>(number(i < 2 ? 19 + 2 * i : 20 + 2 * i, 2));
    return result;
}

// "33CC820F-121F-4221-B48E-57EBB11C6955"
Text guid_text(const abi::GUID& guid);

// "{33CC820F-121F-4221-B48E-57EBB11C6955}", as registries and manifests have it.
std::string braced(const abi::GUID& guid);

// Reads that form. False for anything else; `guid` is untouched then.
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

}  // namespace orvo
