#pragma once

// Variants as the texts in which the conversion table shows them.

#include <string>

#include "platform/system/automation.h"

namespace orvo::testing {

// "I4 -7", "BSTR \"a\"", "CY int64=12345", "vt9".
std::string printed(const abi::VARIANT& value);

// "OVERFLOW", "S_OK", "80004005".
std::string printed_result(abi::HRESULT result);

// A variant that clears itself.
struct Owned : abi::VARIANT {
    Owned() { abi::VariantInit(this); }
    ~Owned() { abi::VariantClear(this); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    void set_text(const std::u16string& text);
};

}  // namespace orvo::testing
