#pragma once

// Failures at a binary border: from a C++ exception to a result code with the thread's error
// object, and back.

#include "platform/abi/system.h"
#include "platform/automation/failure.h"
#include "platform/automation/object.h"

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

// Raises what the thread's error object says, or the plain result code where there is none.
[[noreturn]] void raise_result(abi::HRESULT code);

// Raises what a failed late-bound call reported, and frees what `info` holds.
[[noreturn]] void raise_late_failure(abi::HRESULT code, abi::EXCEPINFO& info);

}  // namespace detail
}  // namespace orvo
