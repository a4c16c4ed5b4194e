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

// A test of a failure that has no source yet, as values raise it.
template <class Body>
void expect_raises(std::int32_t number, TextView description, Body&& body) {
    expect_failure(raised_by(std::forward<Body>(body)), number, u"", to_utf8(description));
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
