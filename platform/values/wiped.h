#pragma once

#include <utility>

#include "platform/values/variant.h"

namespace orvo {

// A value that is overwritten when this goes (Variant::wipe): for one that holds a password, or may
// hold one. Copies of it are the affair of whoever made them. Used by one thread.
struct Wiped {
    explicit Wiped(Variant given) : value(std::move(given)) {}
    ~Wiped() { value.wipe(); }
    Wiped(const Wiped&) = delete;
    Wiped& operator=(const Wiped&) = delete;

    Variant value;
};

}  // namespace orvo
