#pragma once

#include "platform/values/secret.h"
#include "platform/values/variant.h"

namespace orvo {

// A password as a text value: the one place where the component makes clear text of it, for the
// interfaces that take or give passwords as variants. One that is not handed on belongs into a
// Wiped.
Variant password_value(const Secret& secret);

}  // namespace orvo
