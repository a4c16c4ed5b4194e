#pragma once

// Text brought to one form by the tables of Unicode: of libunistring, and on Windows of the system.
// Kept apart from text.h so that nothing has to load them that only passes text on. Any thread;
// nothing fails but for want of memory.

#include "platform/values/text.h"

namespace orvo {

// Lower-case letters in compatibility composition (NFKC): "É" and "E" with an accent behind it are
// "é", a full-width "Ａ" is "a", "ﬁ" is "fi". One letter stays one: "ß" is not "ss". Text that is
// ill-formed stays as it is.
Text compatible_lower(TextView text);

// The letters and digits alone, without case, accents and compatibility: "ß" is "ss", and "İ", "I"
// and "i" are one. Texts that any rule takes for the same without regard to case give the same;
// so do many that none does ("Zoë" and "ZOE", "R&D" and "rd").
Text letters_and_digits(TextView text);

}  // namespace orvo
