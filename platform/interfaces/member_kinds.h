#pragma once

// What late binding itself cannot tell: whether a member is a method or a property, and whether any
// thread may call the object. Every hosted
// object answers this interface, with the same slots as ISupportErrorInfo in front of its own one.

#include "platform/system/automation.h"

namespace orvo::detail {

inline constexpr abi::IID iid_member_kinds{
    0x3F0C5D1A, 0x8B52, 0x4E0B, {0x9D, 0x6C, 0x27, 0x5E, 0x41, 0xA8, 0x93, 0xD8}};

// HRESULT (as: the IDispatch asked about, member, flags: DISPATCH_* that it can be invoked with and
// the flag below, parameters, required: of its method or reading). DISP_E_MEMBERNOTFOUND where
// there is none.
inline constexpr std::size_t slot_describe_member = 4;

// Among the flags: what its method or reading answers is always an object, or nothing.
inline constexpr std::uint32_t member_answers_object = 0x10000;

// HRESULT (): S_OK where the object's class is described as shared, else S_FALSE.
inline constexpr std::size_t slot_is_shared = 5;

}  // namespace orvo::detail
