#pragma once

// ProgIDs as keys: compared without regard to case, and "Name" and "Name.1" are one. Any thread;
// nothing fails.

#include <cstdint>
#include <string_view>

#include "platform/values/case_folding.h"

namespace orvo {

// The ProgID without the version at its end.
inline std::u16string_view version_independent(std::u16string_view progid) {
    return progid.ends_with(u".1") ? progid.substr(0, progid.size() - 2) : progid;
}

struct ProgidHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view progid) const {
        std::uint64_t hash = 0xCBF29CE484222325u;
        for (char16_t c : version_independent(progid))
            hash = (hash ^ detail::folded(c)) * 0x100000001B3u;
        return static_cast<std::size_t>(hash);
    }
};

struct ProgidEqual {
    using is_transparent = void;
    bool operator()(std::u16string_view a, std::u16string_view b) const {
        a = version_independent(a);
        b = version_independent(b);
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (detail::folded(a[i]) != detail::folded(b[i])) return false;
        return true;
    }
};

}  // namespace orvo
