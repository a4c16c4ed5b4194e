#pragma once

#include <gtest/gtest.h>

#include <utility>

#include "platform/values/failure.h"

namespace orvo {

// The failure that `body` raises; a test failure when it raises none.
template <class Body>
Failure failure_of(Body&& body) {
    try {
        std::forward<Body>(body)();
    } catch (const Failure& failure) {
        return failure;
    }
    ADD_FAILURE() << "nothing was raised";
    return Failure(0, {}, {});
}

template <class Body>
void expect_raises(std::int32_t number, TextView description, Body&& body) {
    const Failure failure = failure_of(std::forward<Body>(body));
    EXPECT_EQ(failure.number, number);
    EXPECT_EQ(failure.description, description);
    EXPECT_EQ(failure.source, u"");
}

template <class Body>
void expect_type_mismatch(Body&& body) {
    expect_raises(13, u"Type mismatch", std::forward<Body>(body));
}

template <class Body>
void expect_subscript_out_of_range(Body&& body) {
    expect_raises(9, u"Subscript out of range", std::forward<Body>(body));
}

}  // namespace orvo
