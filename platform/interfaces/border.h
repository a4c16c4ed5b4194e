#pragma once

// Failures at a binary border: from a C++ exception to a result code with the thread's error
// object, and back. On the thread of the call; what reports is called in a handler and raises
// nothing.

#include "platform/system/automation.h"
#include "platform/values/error_info.h"
#include "platform/values/failure.h"

namespace orvo {

// The exception being handled, as a Failure; `source` where it carries none of its own. An
// exception that is no Failure becomes one: out of memory 7, anything else E_UNEXPECTED with its
// own text.
Failure current_failure(const char* source) noexcept;

namespace detail {

class ObjectCore;

// Leaves the exception being handled in the thread's error object and answers the result code.
abi::HRESULT report_current_exception(const abi::IID& iid, const char* source) noexcept;

// The same for what `member` of an object raised, after the object was told (ObjectCore::failed).
abi::HRESULT report_current_exception(const abi::IID& iid, const ObjectCore& object,
                                      const char* member) noexcept;

// The same for a late-bound caller: fills `info` where given; no error object is left behind.
abi::HRESULT report_current_exception_late(abi::EXCEPINFO* info, const ObjectCore& object,
                                           const char* member) noexcept;

// Raises what a failed call of an interface method reported. The error object is believed only
// when the object says that it supports it for this interface.
[[noreturn]] void raise_call_failure(abi::HRESULT code, abi::IUnknown* object, const abi::IID& iid);

// Raises E_POINTER for an argument that must not be a null pointer.
[[noreturn]] void raise_null_pointer(const char* parameter);

}  // namespace detail
}  // namespace orvo
