#pragma once

#include "platform/values/secret.h"

namespace orvo {

// A password, to be compared or noted by a test.
inline Text clear_text(const Secret& password) {
    return password.reveal([](TextView text) { return Text(text); });
}

}  // namespace orvo
