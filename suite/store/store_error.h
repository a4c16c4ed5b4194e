#pragma once

// Failures of the shared store. Descriptions name the store's address and the reason, never a
// password nor a value.

#include "platform/values/failure.h"

namespace orvo::store {

inline constexpr TextView store_source = u"OrvoSuite.Store";

// The store cannot do its work now: it is not reached, does not answer in time, is starting, is no
// master, is full, or does not take the password. "The store redis://127.0.0.1:6379 cannot be used
// (Connection refused)". Where something had been sent, the description ends in "; what was asked
// may have been done".
inline constexpr std::int32_t store_unreachable = error_number(0x80040470);
// The store refuses a command as such, or answers something else than what was asked for: a mistake
// of ours, or of somebody who has written to our keys.
inline constexpr std::int32_t store_refused = error_number(0x80040471);

// store_unreachable, as the store itself says it: it is full, lacks a replica, or cannot write to
// its disk. It answers, and may well do what else it is asked.
struct RefusedNow : Failure {
    using Failure::Failure;
};

inline bool is_unreachable(const Failure& failure) { return failure.number == store_unreachable; }

}  // namespace orvo::store
