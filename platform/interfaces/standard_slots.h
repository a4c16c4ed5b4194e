#pragma once

// The slots that every interface of an object has in front of its own. Callers of any thread are
// answered; nothing is raised.

#include "platform/interfaces/face.h"

namespace orvo::detail {

// Writes IUnknown's slots and, where `dispatch`, IDispatch's, for faces of an ObjectCore.
void put_standard_slots(abi::Slot* slots, bool dispatch);

// What stands in a slot that nobody calls: answers E_NOTIMPL.
abi::HRESULT reserved_slot();

// Answers a code that comes without an error object; one that an earlier call left is taken away,
// so that nobody takes it for this call's.
abi::HRESULT answered(abi::HRESULT code) noexcept;

}  // namespace orvo::detail
