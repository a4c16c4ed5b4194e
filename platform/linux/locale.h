#pragma once

// Any thread; nothing fails.

#include "platform/system/automation.h"

namespace orvo::runtime {

// Conversions follow US English in every locale but the invariant one, which has no currency sign
// of its own and writes dates with leading zeros and 24 hours.
inline constexpr abi::LCID invariant_locale = 0x7F;

constexpr bool is_invariant(abi::LCID locale) { return (locale & 0xFFFF) == invariant_locale; }
constexpr char16_t currency_sign(abi::LCID locale) { return is_invariant(locale) ? u'\xA4' : u'$'; }

}  // namespace orvo::runtime
