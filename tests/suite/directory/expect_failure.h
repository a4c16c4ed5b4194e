#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "platform/values/failure.h"

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

// How the description of a time-out begins.
inline Text no_answer_of(const std::string& server, std::chrono::milliseconds limit,
                         const std::string& setting = "AnswerLimit") {
    return from_utf8("(85) The server did not answer in time. 'ldap://" + server +
                     "' gave no complete answer within " + std::to_string(limit.count()) + " ms (" +
                     setting + ").");
}

}  // namespace orvo
