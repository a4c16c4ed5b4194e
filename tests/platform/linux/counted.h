#pragma once

// An object of raw slots, as a stranger would write it: it counts its references and answers
// IDispatch with one default value.

#include <atomic>
#include <functional>

#include "platform/system/automation.h"

namespace orvo::testing {

struct Counted : abi::IDispatch {
    std::atomic<int> references{1};
    abi::VARIANT default_value{};
    abi::HRESULT default_result = abi::s_ok;
    bool has_dispatch = true;
    int invoked = 0;
    std::uint32_t locale = 0;
    std::uint16_t flags = 0;
    bool had_details = true;
    std::function<void()> during;  // done while the default value is read

    Counted();
};

}  // namespace orvo::testing
