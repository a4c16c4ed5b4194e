#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include "platform/values/failure.h"

namespace orvo {

// The failure that `body` raises; a test failure and an empty one when it raises none.
template <class Body>
Failure raised_by(Body&& body) {
    try {
        std::forward<Body>(body)();
    } catch (const Failure& failure) {
        return failure;
    }
    ADD_FAILURE() << "nothing was raised";
    return Failure(0, {}, {});
}

// A test of the whole failure that a caller sees.
inline void expect_failure(const Failure& failure, std::int32_t number, TextView source,
                           const std::string& description) {
    EXPECT_EQ(failure.number, number) << to_utf8(hexadecimal(failure.number));
    EXPECT_EQ(to_utf8(failure.source), to_utf8(source));
    EXPECT_EQ(to_utf8(failure.description), description);
}

}  // namespace orvo
