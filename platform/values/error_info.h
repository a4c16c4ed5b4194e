#pragma once

// Failures in the forms in which they cross a binary border: a result code with the thread's error
// object, or the record that a late-bound call fills. Each thread has an error object of its own,
// so all of these may be called by any thread. The raised failures are of type Failure.

#include "platform/system/automation.h"
#include "platform/values/failure.h"

namespace orvo::detail {

// Leaves the failure in the thread's error object, told of the interface `iid`, and answers its
// result code. Where memory for the object runs out, the code goes alone.
abi::HRESULT leave_error_object(const abi::IID& iid, const Failure& failure) noexcept;

// The same in the record of a late-bound call; without a record the code goes alone. What `info`
// held is written over; its texts are the receiver's to free.
abi::HRESULT fill_error_record(abi::EXCEPINFO* info, const Failure& failure) noexcept;

// Raises the run-time error that a failing result of a system's call stands for; returns when it is
// a success.
void check(abi::HRESULT result);

// Raises a failed result that came without an error object.
[[noreturn]] void raise_bare_result(abi::HRESULT code);

// Raises what the thread's error object says, and takes it away; the bare result where there is
// none.
[[noreturn]] void raise_result(abi::HRESULT code);

// Raises what a failed late-bound call reported, and frees what `info` holds.
[[noreturn]] void raise_late_failure(abi::HRESULT code, abi::EXCEPINFO& info);

}  // namespace orvo::detail
