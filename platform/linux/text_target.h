#pragma once

// Any thread; failures are results, nothing is raised. The text is the caller's to free.

#include "platform/system/automation.h"

namespace orvo::runtime {

// A simple value (number, date, boolean, decimal) as text; Empty is the empty text. `value` is no
// reference. DISP_E_TYPEMISMATCH for a type that has no text, E_INVALIDARG for an illegal date.
abi::HRESULT put_text(const abi::VARIANT& value, abi::LCID locale, std::uint16_t flags,
                      abi::VARIANT& out);

}  // namespace orvo::runtime
