#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/automation/failure.h"

namespace orvo {

// The failure that `action` raises; one with number 0 and a telling text when it raises none.
template <class Action>
Failure failure_of(Action action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure;
    }
    return Failure(0, u"", u"nothing was raised");
}

}  // namespace orvo
