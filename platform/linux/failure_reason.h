#pragma once

#include "platform/system/automation.h"
#include "platform/values/text.h"

namespace orvo::runtime {

// What a failed call says of its failure in the thread's error object, which is taken; without
// that, the result code.
inline Text failure_reason(abi::HRESULT outcome) {
    abi::IUnknown* error = nullptr;
    abi::GetErrorInfo(0, &error);
    Text reason;
    if (error) {
        abi::BSTR text = nullptr;
        abi::call_slot<abi::HRESULT, abi::BSTR*>(error, abi::slot_error_get_description, &text);
        reason.assign(text ? text : u"", abi::SysStringLen(text));
        abi::SysFreeString(text);
        abi::release(error);
    }
    return reason.empty() ? u"it answers 0x" + hexadecimal(outcome) : reason;
}

}  // namespace orvo::runtime
